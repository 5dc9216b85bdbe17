#include "tests/support/HelperProcess.h"

#include "base/win/ThisModule.h"
#include "tests/support/UiRobot.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

int holderCounter = 0;

KernelHandle startHelper(const ZString& arguments)
{
    return startProgram(L"\"" + helperProgramPath() + L"\" " + arguments);
}

} // namespace

KernelHandle startProgram(const ZString& text)
{
    std::vector<wchar_t> commandLine(text.c_str(), text.c_str() + text.length() + 1); // CreateProcessW may write to it
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return KernelHandle();
    CloseHandle(process.hThread);
    return KernelHandle(process.hProcess);
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
    std::vector<wchar_t> command(commandLine.c_str(), commandLine.c_str() + commandLine.length() + 1);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = outputFile.get();
    startup.hStdError = outputFile.get();
    PROCESS_INFORMATION process = {};
    int exitCode = -1;
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        KernelHandle thread(process.hThread);
        KernelHandle child(process.hProcess);
        DWORD code = 0;
        if (pumpUntil([&] { return WaitForSingleObject(child.get(), 0) == WAIT_OBJECT_0; }, timeoutMs)
            && GetExitCodeProcess(child.get(), &code))
            exitCode = static_cast<int>(code);
    }
    outputFile.reset();
    std::ifstream in(std::filesystem::path(outputPath.c_str()), std::ios::binary);
    output.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    in.close();
    DeleteFileW(outputPath.c_str());
    return exitCode;
}

ZString helperProgramPath()
{
    return moduleFolder(GetModuleHandleW(nullptr)) + L"\\pryxa-test-helper.exe";
}

HeldByHelper::HeldByHelper(const ZString& command)
{
    const ZString base = ZString::format(L"PryxaHeldByHelper-%lu-%d", GetCurrentProcessId(), ++holderCounter);
    const ZString readyName = base + L"-ready";
    const ZString doneName = base + L"-done";
    ready_ = KernelHandle(CreateEventW(nullptr, TRUE, FALSE, readyName.c_str()));
    done_ = KernelHandle(CreateEventW(nullptr, TRUE, FALSE, doneName.c_str()));
    process_ = startHelper(command + L" " + readyName + L" " + doneName);
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
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::path(path_.c_str()), ignored);
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
