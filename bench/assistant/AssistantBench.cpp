// Times the assistant receiving a thousand files of the same name, one command line each
// ("-deleteFile -dir OUT -name NAME FILE"), as the capture module hands them over: every
// file after the first needs the next free "NAME (N).pdf". Prints the time of the first
// and the last hundred files and of all of them; a search that probes each candidate in
// turn shows as a last hundred much slower than the first. Run under Wine (run-assistant-bench).

#include "base/win/TempFolder.h"
#include "tools/assistant/Inbox.h"

#include <windows.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

constexpr int kFiles = 1000;
constexpr int kGroup = 100;

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Small stand-ins for captured PDFs: the copy itself is not what is measured.
std::vector<ZString> writeSources(const ZString& folder)
{
    createFolderTree(folder);
    std::vector<ZString> sources;
    for (int i = 0; i < kFiles; ++i) {
        sources.push_back(joinPath(folder, ZString::format(L"screenCapture-%d.pdf", i)));
        std::ofstream(std::filesystem::path(sources.back().c_str()), std::ios::binary) << "%PDF-1.4\n% capture " << i;
    }
    return sources;
}

} // namespace

int main()
{
    const ZString work = joinPath(systemTempFolder(), ZString::format(L"pryxa-assistant-bench-%lu", GetTickCount()));
    const std::vector<ZString> sources = writeSources(joinPath(work, L"in"));
    const ZString out = joinPath(work, L"out");
    Inbox inbox(out, joinPath(work, L"assistant.log"));

    std::vector<double> times;
    for (const ZString& source : sources) {
        const Clock::time_point start = Clock::now();
        const bool saved = inbox.receive({L"-deleteFile", L"-dir", out, L"-name", L"Screen capture", source}).size() == 1;
        times.push_back(msSince(start));
        if (!saved) {
            std::printf("file %zu was not saved\n", times.size());
            return 1;
        }
    }
    double first = 0, last = 0, all = 0;
    for (int i = 0; i < kFiles; ++i) {
        all += times[i];
        first += i < kGroup ? times[i] : 0;
        last += i >= kFiles - kGroup ? times[i] : 0;
    }
    std::printf("Assistant receiving %d files named \"Screen capture\":\n", kFiles);
    std::printf("  first %d files:  %8.1f ms (%.2f ms a file)\n", kGroup, first, first / kGroup);
    std::printf("  last %d files:   %8.1f ms (%.2f ms a file)\n", kGroup, last, last / kGroup);
    std::printf("  all %d files:   %8.1f ms\n", kFiles, all);
    std::printf("  last / first:     %8.1f\n", last / first);
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(work.c_str()), ignored);
    return 0;
}
