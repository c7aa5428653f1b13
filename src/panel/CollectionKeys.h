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
};

Command command(int key, Qt::KeyboardModifiers modifiers);

} // namespace CollectionKeys
