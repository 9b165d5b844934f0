// The drawings of the icons, in a square of 24 units.
pragma Singleton
import QtQuick

QtObject {
    id: icons

    /// Drawn with a line of 2 units.
    readonly property var lines: ({
        "back": "M15 5 L8 12 L15 19",
        "call": "M7.5 4.5 L5 7 C5.5 12.5 11.5 18.5 17 19 L19.5 16.5 L15.8 13.6 L13.8 15.2 "
            + "C11.8 14 10 12.2 8.8 10.2 L10.4 8.2 Z",
        "check": "M5 12.5 L10 17.5 L19 7",
        "clear": "M9 6 L20 6 L20 18 L9 18 L3.5 12 Z M11.5 9.5 L16.5 14.5 M16.5 9.5 L11.5 14.5",
        "clock": "M12 3.5 A8.5 8.5 0 1 1 11.99 3.5 Z M12 7.5 L12 12 L15.5 14",
        "close": "M6 6 L18 18 M18 6 L6 18",
        "delete": "M5 7 L19 7 M9.5 7 L10 4 L14 4 L14.5 7 M7 7 L8 20 L16 20 L17 7 M10.5 11 L10.7 16 M13.5 11 L13.3 16",
        "down": "M5 9 L12 16 L19 9",
        "edit": "M5 19 L6 15 L15.5 5.5 L18.5 8.5 L9 18 Z M13.5 7.5 L16.5 10.5",
        "hold": "M9 5 L9 19 M15 5 L15 19",
        "home": "M4 11 L12 4 L20 11 M6.5 9.5 L6.5 19.5 L17.5 19.5 L17.5 9.5",
        "incoming": "M18 6 L7 17 M7 9 L7 17 L15 17",
        "lock": "M6 11 L18 11 L18 20 L6 20 Z M8.5 11 L8.5 8 C8.5 3.2 15.5 3.2 15.5 8 L15.5 11",
        "message": "M4 5.5 L20 5.5 L20 16 L11 16 L7 19.5 L7 16 L4 16 Z",
        "missed": "M4 8 L11.5 15.5 L20 7 M4 14 L4 8 L10 8",
        "network": "M12 13 L8 21 M12 13 L16 21 M9.5 18 L14.5 18 M8.5 13.5 C6.5 11 6.8 8.2 8.8 6.2 M15.5 13.5 "
            + "C17.5 11 17.2 8.2 15.2 6.2 M5.5 15.5 C2.5 11.5 2.8 7 6 3.6 M18.5 15.5 C21.5 11.5 21.2 7 18 3.6",
        "outgoing": "M6 18 L17 7 M9 7 L17 7 L17 15",
        "person": "M12 4 A3.9 3.9 0 1 1 11.99 4 Z M4.5 20 C5 12.8 19 12.8 19.5 20",
        "play": "M8 5 L18.5 12 L8 19 Z",
        "plus": "M12 5 L12 19 M5 12 L19 12",
        "settings": "M4 7 L13 7 M17 7 L20 7 M15 5 L15 9 M4 12 L7 12 M11 12 L20 12 M9 10 L9 14 M4 17 L13 17 "
            + "M17 17 L20 17 M15 15 L15 19",
        "sim": "M6 3.5 L14 3.5 L18.5 8 L18.5 20.5 L6 20.5 Z M9.5 12 L15 12 L15 17 L9.5 17 Z",
        "star": "M12 4 L14.4 9.3 L20.2 9.9 L15.9 13.8 L17.1 19.5 L12 16.6 L6.9 19.5 L8.1 13.8 L3.8 9.9 L9.6 9.3 Z",
        "stop": "M7 7 L17 7 L17 17 L7 17 Z",
        "talk": "M9.5 5.5 C9.5 2.3 14.5 2.3 14.5 5.5 L14.5 11 C14.5 14.2 9.5 14.2 9.5 11 Z "
            + "M6 10.5 C6 18.5 18 18.5 18 10.5 M12 16.8 L12 20.5 M8.5 20.5 L15.5 20.5",
        "warning": "M12 4.5 L20.5 19.5 L3.5 19.5 Z M12 10 L12 14 M12 16.5 L12 17"
    })
    /// Filled; those that are in both tables are drawn twice.
    readonly property var fills: ({
        "bolt": "M13.5 2.5 L5.5 13.5 L11 13.5 L10 21.5 L18.5 10 L12.8 10 Z",
        "call": "M7.5 4.5 L5 7 C5.5 12.5 11.5 18.5 17 19 L19.5 16.5 L15.8 13.6 L13.8 15.2 "
            + "C11.8 14 10 12.2 8.8 10.2 L10.4 8.2 Z",
        "keypad": dots(5) + dots(12) + dots(19),
        "play": "M8 5 L18.5 12 L8 19 Z",
        "stop": "M7 7 L17 7 L17 17 L7 17 Z"
    })
    /// Those that point along the line of reading, and turn round with it.
    readonly property var directed: ["back", "clear"]
    /// Those that are others, turned: by how many degrees.
    readonly property var turned: ({"hangup": {"name": "call", "angle": 135}})

    /// Three dots in the row at @p y.
    function dots(y) {
        const dot = x => `M${x} ${y - 2} A2 2 0 1 1 ${x - 0.01} ${y - 2} Z `
        return dot(5) + dot(12) + dot(19)
    }
}
