#include "tools/editor/win/ChildEditor.h"

#include <windows.h>

#include <cstdio>
#include <string>

namespace zoka {

namespace {

constexpr wchar_t kMark[] = L"ZUNHOST_DRIVEN";

}  // namespace

bool isChildEditor() {
    return GetEnvironmentVariableW(kMark, nullptr, 0) != 0;
}

bool runInChild(unsigned limitSeconds, int& status) {
    wchar_t program[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, program, MAX_PATH);
    if (length == 0 || length == MAX_PATH) {
        return false;
    }
    // Closed with this process, however that ends; the child goes with it.
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);

    std::wstring commandLine = GetCommandLineW();  // CreateProcess writes into it
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    SetEnvironmentVariableW(kMark, L"1");
    PROCESS_INFORMATION child{};
    if (!CreateProcessW(program, commandLine.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
                        nullptr, &startup, &child)) {
        CloseHandle(job);
        return false;
    }
    AssignProcessToJobObject(job, child.hProcess);
    ResumeThread(child.hThread);
    if (WaitForSingleObject(child.hProcess, limitSeconds ? limitSeconds * 1000 : INFINITE) == WAIT_TIMEOUT) {
        std::fprintf(stderr, "zunhost: still running after %u s\n", limitSeconds);
        TerminateProcess(child.hProcess, 1);
        WaitForSingleObject(child.hProcess, 5000);
    }
    DWORD code = 1;
    GetExitCodeProcess(child.hProcess, &code);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    CloseHandle(job);
    status = static_cast<int>(code);
    return true;
}

}  // namespace zoka
