#pragma once

#include "FocusedTextInput.h"

// The city search field: a search icon in front, a clear button at the end,
// the text reported on every keystroke. Losing the focus ends nothing.
class CitySearchField final : public FocusedTextInput
{
    Q_OBJECT

public:
    explicit CitySearchField(const QString &placeholder, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void updateSearchIcon();

    QAction *m_searchIcon;
};
