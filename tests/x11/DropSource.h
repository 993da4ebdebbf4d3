// The other side of the XDND protocol, version 5: a program from which a person drags files.
#pragma once

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/Wait.h"
#include "tests/x11/ForeignClient.h"

class DropSource {
public:
    DropSource(const std::string& display, xcb_window_t target)
        : connection_(xcb_connect(display.c_str(), nullptr)), target_(target) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        xcb_create_window(connection_, 0, window_, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0,
                          nullptr);
        xcb_set_selection_owner(connection_, window_, Atom("XdndSelection"), XCB_CURRENT_TIME);
    }
    ~DropSource() { xcb_disconnect(connection_); }
    DropSource(const DropSource&) = delete;
    DropSource& operator=(const DropSource&) = delete;

    void Enter(const std::vector<const char*>& types) {
        constexpr uint32_t kVersion = 5 << 24;
        std::vector<xcb_atom_t> atoms;
        for (const char* type : types) atoms.push_back(Atom(type));
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, Atom("XdndTypeList"), XCB_ATOM_ATOM, 32,
                            static_cast<uint32_t>(atoms.size()), atoms.data());
        const bool more = atoms.size() > 3;
        atoms.resize(3);
        Send("XdndEnter", {kVersion | (more ? 1u : 0u), atoms[0], atoms[1], atoms[2]});
    }
    // Does the target take what is over this place?
    bool Position(int x, int y) {
        Send("XdndPosition", {0, static_cast<uint32_t>(x) << 16 | static_cast<uint32_t>(y), 0, Atom("XdndActionCopy")});
        const auto status = WaitFor(Atom("XdndStatus"));
        const bool takes = (status[1] & 1) != 0;
        EXPECT_EQ(status[4], takes ? Atom("XdndActionCopy") : 0u);
        return takes;
    }
    // Was it taken? `type` is what the data says that it is.
    bool Drop(const std::string& data, const char* type = "text/uri-list") {
        data_ = data;
        type_ = type;
        Send("XdndDrop", {0, XCB_CURRENT_TIME, 0, 0});
        return (WaitFor(Atom("XdndFinished"))[1] & 1) != 0;
    }
    void Leave() { Send("XdndLeave", {0, 0, 0, 0}); }

private:
    xcb_atom_t Atom(const char* name) {
        const auto cookie = xcb_intern_atom(connection_, 0, static_cast<uint16_t>(std::strlen(name)), name);
        return Own(xcb_intern_atom_reply(connection_, cookie, nullptr))->atom;
    }
    void Send(const char* type, const std::array<uint32_t, 4>& data) {
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = target_;
        event.type = Atom(type);
        event.data.data32[0] = window_;
        std::copy(data.begin(), data.end(), &event.data.data32[1]);
        xcb_send_event(connection_, 0, target_, 0, reinterpret_cast<const char*>(&event));
        xcb_flush(connection_);
    }
    // Gives its numbers, after it has handed over what the target asks for meanwhile.
    std::array<uint32_t, 5> WaitFor(xcb_atom_t type) {
        std::array<uint32_t, 5> numbers = {};
        const auto take = [&] {
            while (const auto event = Own(xcb_poll_for_event(connection_))) {
                const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
                if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST)
                    HandOver(reinterpret_cast<const xcb_selection_request_event_t&>(*event));
                if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE || message.type != type) continue;
                std::copy(message.data.data32, message.data.data32 + 5, numbers.begin());
                return true;
            }
            return false;
        };
        EXPECT_TRUE(tdkviz::test::WaitUntil(take));
        EXPECT_EQ(numbers[0], target_);
        return numbers;
    }
    void HandOver(const xcb_selection_request_event_t& request) {
        EXPECT_EQ(request.target, Atom("text/uri-list"));
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            Atom(type_.c_str()), 8, static_cast<uint32_t>(data_.size()), data_.data());
        xcb_selection_notify_event_t event = {};
        event.response_type = XCB_SELECTION_NOTIFY;
        event.requestor = request.requestor;
        event.selection = request.selection;
        event.target = request.target;
        event.property = request.property;
        xcb_send_event(connection_, 0, request.requestor, 0, reinterpret_cast<const char*>(&event));
        xcb_flush(connection_);
    }

    xcb_connection_t* const connection_;
    const xcb_window_t target_;
    xcb_window_t window_ = 0;
    std::string data_, type_;
};
