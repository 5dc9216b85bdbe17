#include "tools/assistant/CommandLine.h"

#include <windows.h>
#include <shellapi.h>

#include <memory>

namespace {

struct LocalFreeDeleter {
    void operator()(LPWSTR* memory) const { LocalFree(memory); }
};

} // namespace

std::vector<ZString> argumentsOf(const ZString& commandLine)
{
    int count = 0;
    const std::unique_ptr<LPWSTR, LocalFreeDeleter> split(CommandLineToArgvW(commandLine.c_str(), &count));
    std::vector<ZString> items;
    for (int i = 1; split && i < count; ++i)
        items.emplace_back(split.get()[i]);
    return items;
}

std::vector<ZString> splitArguments(const ZString& arguments)
{
    // CommandLineToArgvW reads its first item by the rules for a program name.
    return argumentsOf(L"pryxa-Assistant " + arguments);
}
