#pragma once

#include <QWidget>

class QLabel;
class QVBoxLayout;

// One group of a settings form: an optional header above a rounded card of
// rows, with hairlines between the rows that are shown, and an optional
// footer below it in the secondary colour.
class FormGroup final : public QWidget
{
    Q_OBJECT

public:
    explicit FormGroup(const QString &header = QString(), const QString &footer = QString(),
                       QWidget *parent = nullptr);

    // A row holding the widget across the card's width.
    void addRow(QWidget *widget);
    // A row with a label on the left and the widget on the right. Returns the
    // row, to show or hide it whole.
    QWidget *addRow(const QString &label, QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_card;
    QVBoxLayout *m_rows;
};
