#include "CollectionKeys.h"

namespace CollectionKeys {

Command command(int key, Qt::KeyboardModifiers modifiers)
{
    modifiers &= ~Qt::KeypadModifier;
    if (modifiers == Qt::NoModifier) {
        switch (key) {
        case Qt::Key_Up:
            return Command::selectPrevious;
        case Qt::Key_Down:
            return Command::selectNext;
        case Qt::Key_Left:
            return Command::shiftEarlier;
        case Qt::Key_Right:
            return Command::shiftLater;
        case Qt::Key_Menu:
            return Command::openMenu;
        case Qt::Key_F2:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return Command::rename;
        default:
            return Command::none;
        }
    }
    if (modifiers == Qt::AltModifier) {
        if (key == Qt::Key_Up)
            return Command::moveUp;
        if (key == Qt::Key_Down)
            return Command::moveDown;
    }
    if (modifiers == Qt::ShiftModifier) {
        if (key == Qt::Key_F10)
            return Command::openMenu;
        if (key == Qt::Key_Left)
            return Command::shiftEarlierHour;
        if (key == Qt::Key_Right)
            return Command::shiftLaterHour;
    }
    if (modifiers == Qt::ControlModifier && key == Qt::Key_C)
        return Command::copyTime;
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier) && key == Qt::Key_C)
        return Command::copyAll;
    return Command::none;
}

} // namespace CollectionKeys
