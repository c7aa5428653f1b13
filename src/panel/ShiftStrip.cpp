#include "ShiftStrip.h"

#include "AppStyle.h"
#include "ShiftStripAccessible.h"
#include "TextLine.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

ShiftStrip::ShiftStrip(QWidget *parent)
    : QWidget(parent)
    , m_text(new TextLine(AppStyle::uiFont(12, QFont::DemiBold), TextLine::Tone::accent, this))
    , m_back(new QPushButton(QStringLiteral("Back to now"), this))
{
    ShiftStripAccessible::install();
    setObjectName(QStringLiteral("shift-strip"));
    m_text->setObjectName(QStringLiteral("shift-text"));
    m_text->setElides(true);
    m_back->setObjectName(QStringLiteral("back-to-now"));
    m_back->setToolTip(QStringLiteral("Back to now (Escape)"));
    m_back->setAutoDefault(false);
    m_back->setFont(AppStyle::uiFont(12));
    m_back->setCursor(Qt::PointingHandCursor);
    connect(m_back, &QPushButton::clicked, this, &ShiftStrip::backToNowRequested);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 4, 6, 4);
    layout->setSpacing(8);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_back);
    hide();
}

QString ShiftStrip::text() const
{
    return m_text->text();
}

void ShiftStrip::setText(const QString &text)
{
    if (text == m_text->text())
        return;
    const bool wasShown = !m_text->text().isEmpty();
    m_text->setText(text);
    m_text->setToolTip(text);
    setVisible(!text.isEmpty());
    // Showing announces it; a new text while shown is a new notification.
    if (wasShown && !text.isEmpty() && QAccessible::isActive()) {
        QAccessibleEvent changed(this, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&changed);
    }
}

void ShiftStrip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor fill = AppStyle::accent(palette());
    fill.setAlphaF(AppStyle::isDark(palette()) ? 0.22f : 0.12f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()), 9, 9);
}
