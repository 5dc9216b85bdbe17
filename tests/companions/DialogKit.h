#pragma once
// Drives the companions' dialogs as a user does: the test's thread calls the export, which
// returns once the dialog is closed, while a robot finds the dialog and acts on it.

#include "companions/settings/Settings.h"
#include "tests/support/ScratchEnvironment.h"
#include "tests/support/UiRobot.h"

#include <functional>
#include <string>
#include <vector>

// Scratch places with the shipped English texts, whatever the system's language.
struct EnglishScratch : ScratchEnvironment {
    EnglishScratch()
    {
        userConfig_setStr(L"language", L"en");
        useLanguageFolder(shippedLanguageFolder());
    }
};

// Runs `show` while the robot waits for a markup dialog titled `title`, hands it to `act`
// and waits until it has gone. Empty when all went so, else what failed.
std::string withDialog(const std::wstring& title, const std::function<void()>& show,
                       const std::function<void(UiRobot&, HWND dialog)>& act);

enum class CloseBy { escape, closeBox };
void closeDialog(HWND dialog, CloseBy how);
// The dialog's visible child windows of a class ("Edit", "Button"), in markup order.
std::vector<HWND> controls(HWND dialog, const wchar_t* className);
HWND buttonLabelled(HWND dialog, const std::wstring& label);
// The window with the keyboard focus in the thread of `window`.
HWND focusOf(HWND window);
// Waits for a message box, reads it and presses OK.
MessageBoxInfo answerMessageBox(UiRobot& robot);
