#pragma once

#include "TextLine.h"

class ZoneStore;

// One line in the secondary colour, shown only while the store cannot save
// the preferences: the edits are kept, but the user should know.
class SaveErrorLine final : public TextLine
{
    Q_OBJECT

public:
    explicit SaveErrorLine(const ZoneStore &store, QWidget *parent = nullptr);
};
