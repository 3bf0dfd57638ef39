#pragma once

namespace Bralto::BraltoApp {

/// Builds everything out of everything else, runs the event loop, and returns the exit status.
/// `argv` outlives the call, as the toolkit asks for.
[[nodiscard]] int main(int argc, char** argv);

} // namespace Bralto::BraltoApp
