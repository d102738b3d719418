// What a person at the screen would see and do, for scripts: tells which windows appear and go, and
// closes one.
//
// usage: x_client watch             a line for each window that is mapped or unmapped: "map" or
//                                   "unmap", milliseconds of the monotonic clock, id, size, title
//                                   (one that is mapped before it has a title comes twice);
//                                   the first line, "ready", says that no later window is missed
//        x_client close ID          asks the window to close, as its frame's button would
//
// DISPLAY names the screen. Ends with status 1 when there is none, or when the screen goes.
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace {

struct Release {
    void operator()(void* memory) const { std::free(memory); }
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
template <typename Type>
using Owned = std::unique_ptr<Type, Release>;

xcb_atom_t atom(xcb_connection_t* screen, std::string_view name) {
    const auto cookie =
        xcb_intern_atom(screen, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(screen, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::string title(xcb_connection_t* screen, xcb_window_t window) {
    const auto cookie =
        xcb_get_property(screen, 0, window, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, 256);
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(screen, cookie, nullptr));
    if (!reply) {
        return {};
    }
    const auto* text = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return {text, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::string size(xcb_connection_t* screen, xcb_window_t window) {
    const Owned<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(screen, xcb_get_geometry(screen, window), nullptr));
    return reply ? std::to_string(reply->width) + "x" + std::to_string(reply->height) : "0x0";
}

long milliseconds() {
    timespec now{};
    (void)clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000L + now.tv_nsec / 1'000'000L;
}

// The sizes that the events told: a window may be gone by the time it could be asked for its own.
using Sizes = std::map<xcb_window_t, std::string>;

// Whether the window has a title.
bool tell(xcb_connection_t* screen, const char* what, xcb_window_t window, const Sizes& sizes) {
    const long time = milliseconds();
    const auto known = sizes.find(window);
    const std::string name = title(screen, window);
    std::cout << what << ' ' << time << ' ' << window << ' '
              << (known == sizes.end() ? size(screen, window) : known->second) << ' ' << name
              << std::endl;
    return !name.empty();
}

int watch(xcb_connection_t* screen, xcb_window_t root) {
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(screen, root, XCB_CW_EVENT_MASK, &events);
    (void)size(screen, root);  // an answer: from here on every event comes
    std::cout << "ready" << std::endl;
    Sizes sizes;
    std::set<xcb_window_t> untitled;  // are told once more when they have a title
    while (const Owned<xcb_generic_event_t> event{xcb_wait_for_event(screen)}) {
        const int kind = event->response_type & 0x7f;
        if (kind == XCB_CREATE_NOTIFY) {
            const auto* made = reinterpret_cast<xcb_create_notify_event_t*>(event.get());
            sizes[made->window] = std::to_string(made->width) + "x" + std::to_string(made->height);
        } else if (kind == XCB_CONFIGURE_NOTIFY) {
            const auto* now = reinterpret_cast<xcb_configure_notify_event_t*>(event.get());
            sizes[now->window] = std::to_string(now->width) + "x" + std::to_string(now->height);
        } else if (kind == XCB_MAP_NOTIFY) {
            const auto* map = reinterpret_cast<xcb_map_notify_event_t*>(event.get());
            const std::uint32_t changes = XCB_EVENT_MASK_PROPERTY_CHANGE;
            xcb_change_window_attributes(screen, map->window, XCB_CW_EVENT_MASK, &changes);
            if (!tell(screen, "map", map->window, sizes)) {
                untitled.insert(map->window);
            }
        } else if (kind == XCB_PROPERTY_NOTIFY) {
            const auto* set = reinterpret_cast<xcb_property_notify_event_t*>(event.get());
            if (set->atom == XCB_ATOM_WM_NAME && untitled.erase(set->window) != 0) {
                tell(screen, "map", set->window, sizes);
            }
        } else if (kind == XCB_UNMAP_NOTIFY) {
            const auto* unmap = reinterpret_cast<xcb_unmap_notify_event_t*>(event.get());
            untitled.erase(unmap->window);
            tell(screen, "unmap", unmap->window, sizes);
        }
    }
    return 1;
}

int closeWindow(xcb_connection_t* screen, xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(screen, "WM_PROTOCOLS");
    message.data.data32[0] = atom(screen, "WM_DELETE_WINDOW");
    xcb_send_event(screen, 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    (void)size(screen, window);  // an answer: it has been sent
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const Owned<xcb_connection_t> screen(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(screen.get()) != 0) {
        std::cerr << "x_client: no display\n";
        return 1;
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(screen.get())).data->root;
    if (argc == 2 && std::strcmp(argv[1], "watch") == 0) {
        return watch(screen.get(), root);
    }
    if (argc == 3 && std::strcmp(argv[1], "close") == 0) {
        return closeWindow(screen.get(),
                           static_cast<xcb_window_t>(std::strtoul(argv[2], nullptr, 10)));
    }
    std::cerr << "usage: x_client watch | close ID\n";
    return 2;
}
