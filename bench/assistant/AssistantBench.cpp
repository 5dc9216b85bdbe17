// Times the assistant receiving a thousand files of the same name, one command line each
// ("-deleteFile -dir OUT -name NAME FILE"), as the capture module hands them over: every
// file after the first needs the next free "NAME (N).pdf". Prints the median time a file
// of the first and of the last hundred, and the time of all of them; a search that probes
// each candidate in turn shows as a last hundred much slower than the first. Run under
// Wine (run-assistant-bench).

#include "base/win/TempFolder.h"
#include "tools/assistant/Inbox.h"

#include <windows.h>

#include <algorithm>
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

double medianMs(std::vector<double>::const_iterator begin, std::vector<double>::const_iterator end)
{
    std::vector<double> group(begin, end);
    std::nth_element(group.begin(), group.begin() + group.size() / 2, group.end());
    return group[group.size() / 2];
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
    Inbox inbox(out, joinPath(work, L"assistant.log"), [](const ZString&, const ZString&) {});

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
    double all = 0;
    for (double time : times)
        all += time;
    std::printf("Assistant receiving %d files named \"Screen capture\":\n", kFiles);
    const double first = medianMs(times.begin(), times.begin() + kGroup);
    const double last = medianMs(times.end() - kGroup, times.end());
    std::printf("  first %d files:  %6.2f ms a file (median)\n", kGroup, first);
    std::printf("  last %d files:   %6.2f ms a file (median)\n", kGroup, last);
    std::printf("  last / first:     %6.2f\n", last / first);
    std::printf("  all %d files:   %8.1f ms\n", kFiles, all);
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(work.c_str()), ignored);
    return 0;
}
