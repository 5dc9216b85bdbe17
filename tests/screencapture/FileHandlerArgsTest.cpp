#include "screencapture/FileHandlerArgs.h"

#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#endif

namespace screenCapture {
namespace {

std::string utf8(const ZString& s) { return s.toUtf8(); }
ZString z(const char* text) { return ZString::fromUtf8(text); }

TEST(FileHandlerArgs, OptionsComeInTheirOrderAndOnlyWithValues)
{
    FileHandlerArgs all;
    all.files = {z("a.pdf"), z("b c.pdf")};
    all.dir = z("D:\\out");
    all.name = z("n");
    all.profile = z("p");
    all.serviceName = z("s");
    all.owner = z("o");
    all.deleteFile = true;
    EXPECT_EQ(utf8(all.commandLine()), "-deleteFiles -dir D:\\out -name n -profile p -serviceName s -owner o a.pdf \"b c.pdf\"");

    FileHandlerArgs one;
    one.files = {z("x.pdf")};
    one.deleteFile = true;
    EXPECT_EQ(utf8(one.commandLine()), "-deleteFile x.pdf") << "singular for one file";
}

std::vector<ZString> zs(std::initializer_list<const char*> items)
{
    std::vector<ZString> out;
    for (const char* item : items)
        out.push_back(z(item));
    return out;
}

#ifdef _WIN32
// The assistant splits its command line with CommandLineToArgvW: it must get back exactly
// what was sent, however the items need quoting.
TEST(FileHandlerArgs, WhatIsSentIsReadBackWhole)
{
    FileHandlerArgs sent;
    sent.files = zs({"plain", "with blank", "", "tab\there", "say \"hi\"", "C:\\Program Files\\Pryxa\\", "C:\\dir\\",
                     "back\\\\\"slash", "\\\\server\\share\\a b.pdf"});
    sent.dir = z("D:\\out dir\\");
    sent.name = z("Report \"Q3\"");
    sent.owner = z("4711");
    sent.deleteFile = true;
    int count = 0;
    LPWSTR* split = CommandLineToArgvW((L"assistant.exe " + sent.commandLine()).c_str(), &count);
    ASSERT_NE(split, nullptr);
    const std::vector<ZString> items(split + 1, split + count);
    LocalFree(split);
    FileHandlerArgs received;
    ZString error;
    ASSERT_TRUE(parseFileHandlerArgs(items, received, error)) << utf8(error);
    EXPECT_EQ(received.files, sent.files) << utf8(sent.commandLine());
    EXPECT_EQ(received.dir, sent.dir);
    EXPECT_EQ(received.name, sent.name);
    EXPECT_EQ(received.owner, sent.owner);
    EXPECT_TRUE(received.deleteFile);
}
#endif

TEST(FileHandlerArgs, BadLinesAreRefusedAndChangeNothing)
{
    const struct {
        std::vector<ZString> items;
        const char* error;
    } bad[] = {{zs({"-bogus", "x.pdf"}), "unknown option -bogus"},
               {zs({"x.pdf", "-name"}), "no value after -name"},
               {zs({"-deleteFile", "-name", "n"}), "no file given"},
               {{}, "no file given"}};
    for (const auto& b : bad) {
        FileHandlerArgs untouched;
        untouched.name = z("kept");
        ZString error;
        EXPECT_FALSE(parseFileHandlerArgs(b.items, untouched, error)) << b.error;
        EXPECT_EQ(utf8(error), b.error);
        EXPECT_EQ(utf8(untouched.name), "kept");
    }
}

} // namespace
} // namespace screenCapture
