#include "screencapture/FileHandlerArgs.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(utf8(one.commandLine()), "x.pdf") << "no delete option when the file stays";
    one.deleteFile = true;
    EXPECT_EQ(utf8(one.commandLine()), "-deleteFile x.pdf");
}

// How Windows programs split a command line (CommandLineToArgvW), to check the quoting against.
std::vector<std::string> splitLikeWindows(const std::string& line)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    std::vector<std::string> items;
    size_t i = 0;
    for (;;) {
        while (i < line.size() && blank(line[i]))
            ++i;
        if (i == line.size())
            return items;
        std::string item;
        bool quoted = false;
        while (i < line.size() && (quoted || !blank(line[i]))) {
            size_t backslashes = 0;
            while (i < line.size() && line[i] == '\\')
                ++backslashes, ++i;
            if (i < line.size() && line[i] == '"') {
                // 2n backslashes and a quote: n backslashes and a toggle; 2n+1: a literal quote.
                item.append(backslashes / 2, '\\');
                if (backslashes % 2)
                    item.push_back('"');
                else
                    quoted = !quoted;
                ++i;
                continue;
            }
            item.append(backslashes, '\\');
            if (i < line.size() && (quoted || !blank(line[i])))
                item.push_back(line[i++]);
        }
        items.push_back(item);
    }
}

std::vector<ZString> zs(std::initializer_list<const char*> items)
{
    std::vector<ZString> out;
    for (const char* item : items)
        out.push_back(z(item));
    return out;
}

// The assistant must get back exactly what was sent, however the items need quoting.
TEST(FileHandlerArgs, WhatIsSentIsReadBackWhole)
{
    FileHandlerArgs sent;
    sent.files = zs({"plain", "with blank", "", "tab\there", "say \"hi\"", "C:\\Program Files\\Pryxa\\", "C:\\dir\\",
                     "back\\\\\"slash", "\\\\server\\share\\a b.pdf"});
    sent.dir = z("D:\\out dir\\");
    sent.name = z("Report \"Q3\"");
    sent.owner = z("4711");
    sent.deleteFile = true;
    std::vector<ZString> items;
    for (const std::string& item : splitLikeWindows(utf8(sent.commandLine())))
        items.push_back(z(item.c_str()));
    FileHandlerArgs received;
    ZString error;
    ASSERT_TRUE(parseFileHandlerArgs(items, received, error)) << utf8(error);
    EXPECT_EQ(received.files, sent.files) << utf8(sent.commandLine());
    EXPECT_EQ(received.dir, sent.dir);
    EXPECT_EQ(received.name, sent.name);
    EXPECT_EQ(received.owner, sent.owner);
    EXPECT_TRUE(received.profile.isEmpty());
    EXPECT_TRUE(received.deleteFile);

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
        EXPECT_FALSE(parseFileHandlerArgs(b.items, untouched, error)) << b.error;
        EXPECT_EQ(utf8(error), b.error);
        EXPECT_EQ(utf8(untouched.name), "kept") << "a bad line changes nothing";
    }
}

} // namespace
} // namespace screenCapture
