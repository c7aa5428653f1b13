#pragma once

#include <QPushButton>

// "Add city" with a plus in front, in the bordered style. Pressing it emits
// `clicked`.
class AddZoneButton final : public QPushButton
{
    Q_OBJECT

public:
    enum class ControlSize { regular, small };

    explicit AddZoneButton(QWidget *parent = nullptr);

    ControlSize controlSize() const { return m_controlSize; }
    void setControlSize(ControlSize size);

protected:
    void changeEvent(QEvent *event) override;

private:
    void updateLook();

    ControlSize m_controlSize = ControlSize::regular;
};
