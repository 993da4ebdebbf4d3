// A small dialog of choices: a button for each group steps through its names, and each step counts at once.
//
// A plug-in's Configure must not hold up the frames, and the library can be freed while the dialog stands. So it
// lives on a thread of its own, has no parent whose thread it would have to wait for, and goes with this object.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <tdkviz/com.h>

namespace viz {

struct ChoiceGroup {
    const char* Name;
    std::vector<const char*> Choices;
};

// What CreateDialogIndirectParamA reads: words, each control at a multiple of four bytes.
class DialogTemplate {
public:
    DialogTemplate(const char* title, SHORT width, SHORT height) {
        DLGTEMPLATE head = {};
        head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER | DS_SETFONT;
        head.cx = width;
        head.cy = height;
        Append(head);
        words_.insert(words_.end(), {0, 0});  // neither a menu nor a class of its own
        AppendText(title);
        words_.push_back(8);
        AppendText("MS Shell Dlg");
    }
    void Add(WORD kind, DWORD style, WORD id, const char* text, SHORT x, SHORT y, SHORT width, SHORT height) {
        if (words_.size() % 2 != 0) words_.push_back(0);
        DLGITEMTEMPLATE item = {};
        item.style = style | WS_CHILD | WS_VISIBLE;
        item.x = x;
        item.y = y;
        item.cx = width;
        item.cy = height;
        item.id = id;
        Append(item);
        words_.insert(words_.end(), {0xFFFF, kind});
        AppendText(text);
        words_.push_back(0);  // no creation data
        ++words_[kCount];
    }
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

    static constexpr WORD kButton = 0x80, kStatic = 0x82;

private:
    static constexpr size_t kCount = 4;  // the word that counts the controls

    template <typename Part>
    void Append(const Part& part) {
        const size_t end = words_.size();
        words_.resize(end + sizeof(Part) / sizeof(WORD));
        std::memcpy(words_.data() + end, &part, sizeof(Part));
    }
    void AppendText(const char* text) {
        while (*text) words_.push_back(static_cast<unsigned char>(*text++));
        words_.push_back(0);
    }

    std::vector<WORD> words_;
};

class ChoiceDialog {
public:
    using Chosen = std::vector<uint32_t>;  // one index for each group
    using Changed = std::function<void(size_t group, uint32_t choice)>;

    ChoiceDialog() = default;
    ChoiceDialog(const ChoiceDialog&) = delete;
    ~ChoiceDialog() { End(); }

    // Comes back when the dialog stands. `changed` is called on the dialog's thread. What is already shown stays.
    // `title` and `groups` outlive the dialog. S_OK, or E_FAIL if there can be no dialog. [host]
    HRESULT Show(const char* title, const std::vector<ChoiceGroup>& groups, Chosen chosen, Changed changed) {
        if (window_) return S_OK;
        End();
        title_ = title;
        groups_ = &groups;
        chosen_ = std::move(chosen);
        changed_ = std::move(changed);
        ready_ = CreateEventA(nullptr, TRUE, FALSE, nullptr);
        thread_ = ready_ ? CreateThread(nullptr, 0, Main, this, 0, nullptr) : nullptr;
        if (thread_) WaitForSingleObject(ready_, INFINITE);
        return thread_ && window_ ? S_OK : E_FAIL;
    }

private:
    static constexpr WORD kFirstButton = 100;

    void End() {
        if (const HWND window = window_) PostMessageA(window, WM_CLOSE, 0, 0);
        if (thread_) {
            WaitForSingleObject(thread_, INFINITE);
            CloseHandle(thread_);
        }
        if (ready_) CloseHandle(ready_);
        thread_ = ready_ = nullptr;
    }

    static DWORD WINAPI Main(LPVOID self) {
        static_cast<ChoiceDialog*>(self)->Run();
        return 0;
    }

    void Run() {
        constexpr SHORT kRow = 20, kWidth = 150;
        const auto rows = static_cast<SHORT>(groups_->size());
        DialogTemplate layout(title_, kWidth, static_cast<SHORT>(kRow * (rows + 1) + 12));
        for (SHORT i = 0; i < rows; ++i) {
            const auto y = static_cast<SHORT>(8 + i * kRow);
            const ChoiceGroup& group = (*groups_)[static_cast<size_t>(i)];
            layout.Add(DialogTemplate::kStatic, 0, 0xFFFF, group.Name, 8, static_cast<SHORT>(y + 3), 50, 10);
            layout.Add(DialogTemplate::kButton, WS_TABSTOP, static_cast<WORD>(kFirstButton + i), NameOf(i), 62, y, 80,
                       14);
        }
        layout.Add(DialogTemplate::kButton, WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, "Close", 92,
                   static_cast<SHORT>(8 + rows * kRow + 2), 50, 14);
        const HWND window = CreateDialogIndirectParamA(GetModuleHandleA(nullptr), layout.Get(), nullptr, Procedure,
                                                       reinterpret_cast<LPARAM>(this));
        window_ = window;
        SetEvent(ready_);
        if (!window) return;
        ShowWindow(window, SW_SHOW);
        MSG message;
        while (GetMessageA(&message, nullptr, 0, 0) > 0) {
            if (IsDialogMessageA(window, &message)) continue;
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }

    const char* NameOf(int group) const {
        const auto index = static_cast<size_t>(group);
        return (*groups_)[index].Choices[chosen_[index]];
    }

    void Step(int group) {
        const auto index = static_cast<size_t>(group);
        chosen_[index] = (chosen_[index] + 1) % static_cast<uint32_t>((*groups_)[index].Choices.size());
        SetWindowTextA(GetDlgItem(window_, kFirstButton + group), NameOf(group));
        changed_(index, chosen_[index]);
    }

    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_INITDIALOG) SetWindowLongPtrA(window, DWLP_USER, lParam);
        auto* self = reinterpret_cast<ChoiceDialog*>(GetWindowLongPtrA(window, DWLP_USER));
        if (!self) return FALSE;
        switch (message) {
            case WM_INITDIALOG:
                return TRUE;
            case WM_COMMAND:
                if (LOWORD(wParam) >= kFirstButton) {
                    self->Step(LOWORD(wParam) - kFirstButton);
                } else {
                    DestroyWindow(window);
                }
                return TRUE;
            case WM_CLOSE:
                DestroyWindow(window);
                return TRUE;
            case WM_DESTROY:
                self->window_ = nullptr;
                PostQuitMessage(0);
                return TRUE;
            default:
                return FALSE;
        }
    }

    const char* title_ = nullptr;
    const std::vector<ChoiceGroup>* groups_ = nullptr;
    Chosen chosen_;  // the dialog's thread only, once it runs
    Changed changed_;
    HANDLE ready_ = nullptr;
    HANDLE thread_ = nullptr;
    std::atomic<HWND> window_{nullptr};
};

}  // namespace viz
