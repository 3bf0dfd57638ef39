#include "Kovalt/TextScan.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

using namespace Kovalt;

namespace {

using Bytes = std::span<const std::uint8_t>;

TextRun naiveScan(Bytes bytes)
{
    TextRun run;
    while (run.length < bytes.size() && bytes[run.length] >= 0x20)
        run.printableAscii &= bytes[run.length++] < 0x7F;
    return run;
}

std::size_t naivePrintableLength(Bytes bytes)
{
    std::size_t length = 0;
    while (length < bytes.size() && bytes[length] >= 0x20 && bytes[length] < 0x7F)
        ++length;
    return length;
}

struct Form {
    std::string name;
    std::function<TextRun(Bytes)> scan;
    std::function<std::size_t(Bytes)> printableLength;
};

std::vector<Form> forms()
{
    std::vector<Form> all = {
        {"chosen", scanText, printableAsciiLength},
        {"portable", TextScan::scanTextPortable, TextScan::printableAsciiLengthPortable},
    };
#ifdef __SSE2__
    all.push_back({"SSE2", TextScan::scanTextSse2, TextScan::printableAsciiLengthSse2});
    if (TextScan::hasAvx2())
        all.push_back({"AVX2", TextScan::scanTextAvx2, TextScan::printableAsciiLengthAvx2});
#endif
    return all;
}

void expectNaive(const std::vector<std::uint8_t>& bytes)
{
    for (const auto& form : forms()) {
        EXPECT_EQ(form.scan(bytes), naiveScan(bytes)) << form.name << " of " << bytes.size();
        EXPECT_EQ(form.printableLength(bytes), naivePrintableLength(bytes))
            << form.name << " of " << bytes.size();
    }
}

} // namespace

TEST(TextScan, EveryByteAtEveryPlaceOfEverySmallSizeIsSeen)
{
    for (std::size_t size = 0; size <= 70; ++size) {
        std::vector<std::uint8_t> bytes(size, 'x');
        expectNaive(bytes);
        for (std::size_t at = 0; at < size; ++at) {
            for (const int code : {0x00, 0x1B, 0x1F, 0x20, 0x7E, 0x7F, 0x80, 0x9B, 0xA0, 0xFF}) {
                bytes[at] = static_cast<std::uint8_t>(code);
                expectNaive(bytes);
            }
            bytes[at] = 'x';
        }
    }
}

TEST(TextScan, EveryValueOfAByteIsJudgedAlike)
{
    for (int code = 0; code <= 0xFF; ++code) {
        for (const std::size_t size : {1U, 8U, 16U, 48U})
            expectNaive(std::vector<std::uint8_t>(size, static_cast<std::uint8_t>(code)));
    }
}

TEST(TextScan, WhatStandsBehindTheControlDoesNotCount)
{
    for (std::size_t at = 0; at < 70; ++at) {
        std::vector<std::uint8_t> bytes(100, 0xE2);
        std::fill_n(bytes.begin(), at, std::uint8_t{'x'});
        bytes[at] = '\n';
        for (const auto& form : forms())
            EXPECT_EQ(form.scan(bytes), (TextRun{at, true})) << form.name << " at " << at;
    }
}

TEST(TextScan, RandomBytesGiveWhatANaiveLoopGives)
{
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        std::vector<std::uint8_t> bytes(random() % 300);
        const auto rare = 1 + random() % 200;
        for (auto& byte : bytes)
            byte =
                static_cast<std::uint8_t>(random() % rare == 0 ? random() : 0x20 + random() % 95);
        expectNaive(bytes);
    }
}
