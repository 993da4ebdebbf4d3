#include "player/window/PlayerMenu.h"

namespace tdkplay {
namespace {

// More plug-ins than this stand in a menu of their own.
constexpr size_t kMostPlugins = 20;
constexpr uint32_t kFrameRates[] = {10, 15, 20, 25, 30};

// Commands: a kind's own number, those with a number of their own from here on.
constexpr UINT kFirstFrameRate = 100;
constexpr UINT kFirstPlugin = 1000;

UINT CommandOf(MenuChoice::Kind kind) {
    return static_cast<UINT>(kind);
}

MenuChoice ChoiceOf(UINT command) {
    if (command >= kFirstPlugin) return {MenuChoice::Kind::kPlugin, command - kFirstPlugin};
    if (command >= kFirstFrameRate) return {MenuChoice::Kind::kFrameRate, command - kFirstFrameRate};
    return {static_cast<MenuChoice::Kind>(command)};
}

// An "&" of a name is no mark for a key.
std::string Plain(const std::string& name) {
    std::string text;
    for (const char c : name) text.append(c == '&' ? 2 : 1, c);
    return text;
}

// A menu that goes with this object, or with the menu that it was added to.
class Popup {
public:
    Popup() : menu_(CreatePopupMenu()) {}
    ~Popup() {
        if (menu_) DestroyMenu(menu_);
    }
    Popup(const Popup&) = delete;
    Popup& operator=(const Popup&) = delete;

    HMENU Handle() const { return menu_; }
    void Add(MenuChoice::Kind kind, const char* text, bool isChecked = false) {
        AppendMenuA(menu_, MF_STRING | (isChecked ? MF_CHECKED : MF_UNCHECKED), CommandOf(kind), text);
    }
    void AddCommand(UINT command, const std::string& text) { AppendMenuA(menu_, MF_STRING, command, text.c_str()); }
    void AddMenu(Popup& inner, const char* text) {
        AppendMenuA(menu_, MF_POPUP, reinterpret_cast<UINT_PTR>(inner.menu_), text);
        inner.menu_ = nullptr;
    }
    void AddLine() { AppendMenuA(menu_, MF_SEPARATOR, 0, nullptr); }

private:
    HMENU menu_;
};

void AddPlugins(Popup& menu, const MenuState& state) {
    if (state.Plugins.empty()) return;
    const auto count = static_cast<UINT>(state.Plugins.size());
    for (UINT i = 0; i < count; ++i) menu.AddCommand(kFirstPlugin + i, Plain(state.Plugins[i]));
    if (!state.Shown) return;
    CheckMenuRadioItem(menu.Handle(), kFirstPlugin, kFirstPlugin + count - 1,
                       kFirstPlugin + static_cast<UINT>(*state.Shown), MF_BYCOMMAND);
}

void AddFrameRates(Popup& menu, const MenuState& state) {
    Popup rates;
    for (const uint32_t rate : kFrameRates)
        rates.AddCommand(kFirstFrameRate + rate, std::to_string(rate) + " a second");
    CheckMenuRadioItem(rates.Handle(), kFirstFrameRate, kFirstPlugin - 1, kFirstFrameRate + state.FrameRate,
                       MF_BYCOMMAND);
    menu.AddMenu(rates, "Frame &rate");
}

void Fill(Popup& menu, const MenuState& state) {
    using Kind = MenuChoice::Kind;
    if (state.Plugins.size() > kMostPlugins) {
        Popup plugins;
        AddPlugins(plugins, state);
        menu.AddMenu(plugins, "&Visualization");
    } else {
        AddPlugins(menu, state);
    }
    menu.AddLine();
    menu.Add(Kind::kEffects, "Special &effects", state.Effects);
    menu.Add(Kind::kRandomize, "Effects change by &themselves", state.Randomize);
    AddFrameRates(menu, state);
    menu.Add(Kind::kSettings, "&Settings...\tS");
    menu.AddLine();
    menu.Add(Kind::kFullScreen, "&Full screen\tF", state.IsFullScreen);
    menu.Add(Kind::kOnTop, "Always on t&op", state.IsOnTop);
    menu.AddLine();
    menu.Add(Kind::kNextPiece, "&Next piece\tN");
    menu.Add(Kind::kPreviousPiece, "&Piece before\tB");
    menu.AddLine();
    menu.Add(Kind::kQuit, "&Quit");
}

}  // namespace

MenuChoice ShowPlayerMenu(HWND window, POINT place, const MenuState& state) {
    Popup menu;
    Fill(menu, state);
    const BOOL command = TrackPopupMenu(menu.Handle(), TPM_RETURNCMD | TPM_RIGHTBUTTON | TPM_LEFTALIGN | TPM_TOPALIGN,
                                        place.x, place.y, 0, window, nullptr);
    return ChoiceOf(static_cast<UINT>(command));
}

}  // namespace tdkplay
