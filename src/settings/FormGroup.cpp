#include "FormGroup.h"

#include "AppStyle.h"
#include "TextLine.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr int cardRadius = 8;
constexpr int rowInset = 12;
constexpr int rowSpacing = 17;

// The rounded card behind the rows, with a hairline between each pair of
// rows that are shown.
class FormCard final : public QWidget
{
public:
    FormCard() { setAttribute(Qt::WA_StyledBackground, false); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPalette &colours = palette();
        QColor fill = colours.color(QPalette::WindowText);
        fill.setAlphaF(AppStyle::isDark(colours) ? 0.06f : 0.035f);
        painter.setPen(QPen(AppStyle::line(colours), 1));
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cardRadius,
                                cardRadius);

        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(AppStyle::line(colours));
        const QWidget *previous = nullptr;
        for (QObject *child : children()) {
            auto *row = qobject_cast<QWidget *>(child);
            if (!row || row->isHidden())
                continue;
            if (previous) {
                const int y = (previous->geometry().bottom() + row->geometry().top() + 1) / 2;
                painter.drawLine(rowInset, y, width() - rowInset, y);
            }
            previous = row;
        }
    }
};

} // namespace

FormGroup::FormGroup(const QString &header, const QString &footer, QWidget *parent)
    : QWidget(parent)
    , m_card(new FormCard)
    , m_rows(new QVBoxLayout(m_card))
{
    // Hidden rows take no room: the spacing between the shown ones holds the hairlines.
    m_rows->setContentsMargins(rowInset, 10, rowInset, 10);
    m_rows->setSpacing(rowSpacing);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    if (!header.isEmpty()) {
        auto *title = new TextLine(AppStyle::uiFont(13, QFont::DemiBold));
        title->setText(header);
        title->setContentsMargins(4, 0, 0, 0);
        layout->addWidget(title);
    }
    layout->addWidget(m_card);
    if (!footer.isEmpty()) {
        auto *note = new TextLine(AppStyle::uiFont(12), TextLine::Tone::secondary);
        note->setText(footer);
        note->setWordWrap(true);
        note->setContentsMargins(4, 0, 4, 0);
        layout->addWidget(note);
    }
}

void FormGroup::addRow(QWidget *widget)
{
    // A row shown or hidden changes where the hairlines go.
    widget->installEventFilter(this);
    m_rows->addWidget(widget);
}

QWidget *FormGroup::addRow(const QString &label, QWidget *widget)
{
    auto *row = new QWidget;
    auto *text = new QLabel(label);
    text->setFont(AppStyle::uiFont(13));
    text->setBuddy(widget);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text);
    layout->addStretch();
    layout->addWidget(widget);
    // A control is named by its label; a value keeps its own text as its name.
    if (!qobject_cast<QLabel *>(widget) && widget->accessibleName().isEmpty())
        widget->setAccessibleName(label);
    addRow(row);
    return row;
}

bool FormGroup::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
        m_card->update();
    return QWidget::eventFilter(watched, event);
}
