#pragma once

#include <QFrame>

// A horizontal hairline in the resting border colour of the parent's palette.
class Divider final : public QFrame
{
    Q_OBJECT

public:
    explicit Divider(QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void updateColour();

    bool m_updating = false;
};
