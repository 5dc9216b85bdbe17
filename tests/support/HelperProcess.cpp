#include "tests/support/HelperProcess.h"

#include "base/win/ThisModule.h"
#include "tests/support/UiRobot.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

int holderCounter = 0;

ZString helperProgramPath()
{
    return moduleFolder(GetModuleHandleW(nullptr)) + L"\\pryxa-test-helper.exe";
}

// `output`, if given, is inherited as standard output and error.
KernelHandle launch(const ZString& text, HANDLE output = nullptr)
{
    std::vector<wchar_t> commandLine(text.c_str(), text.c_str() + text.length() + 1); // CreateProcessW may write to it
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    if (output) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = startup.hStdError = output;
    }
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, output != nullptr, 0, nullptr, nullptr,
                        &startup, &process))
        return KernelHandle();
    CloseHandle(process.hThread);
    return KernelHandle(process.hProcess);
}

} // namespace

KernelHandle startProgram(const ZString& commandLine)
{
    return launch(commandLine);
}

int runProgram(const ZString& commandLine, std::string& output, unsigned timeoutMs)
{
    wchar_t tempFolder[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH + 1, tempFolder);
    const ZString outputPath =
        ZString::format(L"%sprogram-output-%lu-%lu.txt", tempFolder, GetCurrentProcessId(), GetTickCount());
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    KernelHandle outputFile(CreateFileW(outputPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        &inheritable, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY, nullptr));
    if (!outputFile)
        return -1;
    const KernelHandle child = launch(commandLine, outputFile.get());
    DWORD code = 0;
    const bool ended = child && pumpUntil([&] { return WaitForSingleObject(child.get(), 0) == WAIT_OBJECT_0; }, timeoutMs);
    const int exitCode = ended && GetExitCodeProcess(child.get(), &code) ? static_cast<int>(code) : -1;
    outputFile.reset();
    {
        std::ifstream in(std::filesystem::path(outputPath.c_str()), std::ios::binary);
        output.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    DeleteFileW(outputPath.c_str());
    return exitCode;
}

HeldByHelper::HeldByHelper(const ZString& command)
{
    const ZString base = ZString::format(L"PryxaHeldByHelper-%lu-%d", GetCurrentProcessId(), ++holderCounter);
    ready_ = KernelHandle(CreateEventW(nullptr, TRUE, FALSE, (base + L"-ready").c_str()));
    done_ = KernelHandle(CreateEventW(nullptr, TRUE, FALSE, (base + L"-done").c_str()));
    process_ = startProgram(L"\"" + helperProgramPath() + L"\" " + command + L" " + base + L"-ready " + base + L"-done");
    holding_ = process_ && WaitForSingleObject(ready_.get(), 10000) == WAIT_OBJECT_0;
}

HeldByHelper::~HeldByHelper()
{
    if (done_)
        SetEvent(done_.get());
    if (process_)
        WaitForSingleObject(process_.get(), 10000);
}

CommandRecorder::CommandRecorder(const ZString& folder)
    : path_(ZString::format(L"%s\\recorded-%lu-%lu.txt", folder.c_str(), GetCurrentProcessId(), GetTickCount()))
{
    SetEnvironmentVariableW(L"PRYXA_RECORD_FILE", path_.c_str());
}

CommandRecorder::~CommandRecorder()
{
    SetEnvironmentVariableW(L"PRYXA_RECORD_FILE", nullptr);
    DeleteFileW(path_.c_str());
}

ZString CommandRecorder::commandFor(const ZString& arguments)
{
    return L"\"" + helperProgramPath() + L"\" record " + arguments;
}

bool CommandRecorder::installAs(const ZString& path)
{
    return CopyFileW(helperProgramPath().c_str(), path.c_str(), FALSE) != FALSE;
}

std::vector<std::string> CommandRecorder::lines() const
{
    std::vector<std::string> lines;
    std::ifstream in(std::filesystem::path(path_.c_str()));
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

bool CommandRecorder::waitForLines(size_t count, unsigned timeoutMs) const
{
    return pumpUntil([&] { return lines().size() >= count; }, timeoutMs);
}
