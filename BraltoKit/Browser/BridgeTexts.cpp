#include "Browser/BridgeTexts.h"

#include "Base/ShellQuote.h"

namespace Bralto::BridgeTexts {

namespace {

// What both shims begin with. `find_real` looks behind the last mention of their folder in PATH, so
// that no shim finds itself, and two that hide each other don't call each other forever.
constexpr char ShimHead[] = R"sh(name=${0##*/}
case $0 in
    */*) bin=${0%/*} ;;
    *) bin=. ;;
esac

is_web_link() {
    case $1 in
        [Hh][Tt][Tt][Pp]://* | [Hh][Tt][Tt][Pp][Ss]://*) return 0 ;;
        *) return 1 ;;
    esac
}

# The program of that name behind this folder in PATH.
find_real() {
    found=
    set -f
    IFS=:
    for folder in $PATH; do
        folder=${folder:-.}
        if [ "$folder" -ef "$bin" ]; then
            found=
        elif [ -z "$found" ] && [ -f "$folder/$1" ] && [ -x "$folder/$1" ]; then
            found=$folder/$1
        fi
    done
    unset IFS
    set +f
    [ -n "$found" ]
}

# What this file stands in for.
find_opener() {
    # It may open links by what BROWSER says, which must not lead back to here.
    case ${BROWSER:-} in
        */bralto-browser*) unset BROWSER ;;
    esac
    real=${BRALTO_OPEN:-}
    [ -z "$real" ] || return 0
    for candidate in $openers; do
        if find_real "$candidate"; then
            real=$found
            return 0
        fi
    done
    echo "$name: no program that opens files and links was found" >&2
    return 127
}
)sh";

constexpr char BrowserBody[] = R"sh(
openers="xdg-open open"
status=0
for argument do
    if is_web_link "$argument" && [ -n "${BRALTO_BUNDLE_ID:-}" ] &&
        "$bralto" --deliver "$BRALTO_BUNDLE_ID" "$argument" >/dev/null 2>&1; then
        continue
    fi
    find_opener && "$real" "$argument" || status=$?
done
exit $status
)sh";

constexpr char OpenBody[] = R"sh(
openers="$name xdg-open open"

open_for_real() {
    find_opener || exit
    exec "$real" "$@"
}

[ -n "${BRALTO_BUNDLE_ID:-}" ] || open_for_real "$@"

# Flags that don't change where a link goes are dropped, any other makes this no plain link.
web=
for argument do
    if is_web_link "$argument"; then
        web=$argument
        continue
    fi
    case $argument in
        -u | -g | -j | -F | -n | -W) ;;
        --background | --hide | --fresh | --new | --wait-apps) ;;
        *) open_for_real "$@" ;;
    esac
done
[ -n "$web" ] || open_for_real "$@"

for argument do
    if is_web_link "$argument"; then
        set -- "$@" "$argument"
    fi
    shift
done
exec "$bin/bralto-browser" "$@"
)sh";

// Beside the user's files nothing of ours may depend on the user's options, so the end sets its
// own; the lines outside of it mean the same under all of them.
constexpr char ZshBeginning[] = R"zsh(bralto_finish() {
  builtin emulate -L zsh
  builtin unfunction bralto_finish
  if [[ -n ${BRALTO_BIN-} ]]; then
    path=("$BRALTO_BIN" "${(@)path:#$BRALTO_BIN}")
  fi
  if [[ ${BRALTO_USER_ZDOTDIR-} == "$HOME" ]]; then
    builtin unset ZDOTDIR
  else
    builtin export ZDOTDIR=$BRALTO_USER_ZDOTDIR
  fi
  builtin unset bralto_zdotdir BRALTO_USER_ZDOTDIR
}
bralto_zdotdir=$ZDOTDIR
)zsh";

// A user's file may move the folder of the later ones, or take it back. One that fails or is
// interrupted must not end ours as well: zsh would go on with the user's files and never come back.
constexpr char ZshBody[] = R"zsh(ZDOTDIR=$BRALTO_USER_ZDOTDIR
if [[ -f $ZDOTDIR/@file@ ]]; then
  {
    builtin source "$ZDOTDIR/@file@"
  } always {
    TRY_BLOCK_ERROR=0
    TRY_BLOCK_INTERRUPT=0
  }
fi
BRALTO_USER_ZDOTDIR=${ZDOTDIR-$HOME}
ZDOTDIR=$bralto_zdotdir
)zsh";

// Each file finishes if zsh reads none after it.
constexpr char ZshEnvEnd[] = R"zsh([[ -o rcs && ( -o login || -o interactive ) ]] || bralto_finish
)zsh";

constexpr char ZshProfileEnd[] = R"zsh([[ -o rcs ]] || bralto_finish
)zsh";

// zsh made the default of its history's file from our folder.
constexpr char ZshRcEnd[] = R"zsh(if [[ ${HISTFILE-} == "$bralto_zdotdir/.zsh_history" ]]; then
  HISTFILE=$BRALTO_USER_ZDOTDIR/.zsh_history
fi
[[ -o login && -o rcs ]] || bralto_finish
)zsh";

constexpr char ZshLoginEnd[] = R"zsh(bralto_finish
)zsh";

File zshFile(const char* name, const char* beginning, const char* end)
{
    const QByteArray body = QByteArray(ZshBody).replace("@file@", name);
    return {QString::fromLatin1(name), QByteArray("# Installed by Bralto: runs your own ") + name +
                                           ", see BrowserBridge.\n" + beginning + body + end};
}

} // namespace

QByteArray browserShim(const QString& executable)
{
    return "#!/bin/sh\n"
           "# Installed by Bralto: opens web links in the window of this pane's project.\n"
           "bralto=" +
           ShellQuote::quoted(executable).toUtf8() + '\n' + ShimHead + BrowserBody;
}

QByteArray openShim()
{
    return QByteArray("#!/bin/sh\n"
                      "# Installed by Bralto: web links open in the window of this pane's project, "
                      "everything\n"
                      "# else as ever.\n") +
           ShimHead + OpenBody;
}

std::vector<File> zshSources()
{
    return {zshFile(".zshenv", ZshBeginning, ZshEnvEnd), zshFile(".zprofile", "", ZshProfileEnd),
            zshFile(".zshrc", "", ZshRcEnd), zshFile(".zlogin", "", ZshLoginEnd)};
}

} // namespace Bralto::BridgeTexts
