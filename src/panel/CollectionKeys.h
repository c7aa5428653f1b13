#pragma once

#include <Qt>

// What a key press on the zone list asks for.
namespace CollectionKeys {

enum class Command {
    none,
    selectPrevious, // Up
    selectNext,     // Down
    moveUp,         // Alt+Up
    moveDown,       // Alt+Down
    openMenu,       // Menu, Shift+F10
    rename,         // F2, Return, Enter
    // Planning across zones: the shown moment a quarter hour or an hour
    // earlier or later.
    shiftEarlier,     // Left
    shiftLater,       // Right
    shiftEarlierHour, // Shift+Left
    shiftLaterHour,   // Shift+Right
    copyTime,         // Ctrl+C
    copyAll,          // Ctrl+Shift+C
};

Command command(int key, Qt::KeyboardModifiers modifiers);

} // namespace CollectionKeys
