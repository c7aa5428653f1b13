#include "MenuBarTab.h"

#include "AppStyle.h"
#include "Clock.h"
#include "Eyebrow.h"
#include "FormGroup.h"
#include "SettingsTexts.h"
#include "ShownUpdate.h"
#include "TimeZoneDatabase.h"
#include "ZoneStore.h"

#include <QComboBox>
#include <QLabel>
#include <QVBoxLayout>

MenuBarTab::MenuBarTab(ZoneStore &store, Clock &clock, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_clock(clock)
    , m_picker(new QComboBox)
    , m_preview(new QLabel)
    , m_pinHint(new TextLine(AppStyle::uiFont(12), TextLine::Tone::secondary))
    , m_pinnedCount(new QLabel)
{
    m_picker->setObjectName(QStringLiteral("time-format"));
    for (const MenuBarFormat format : MenuBarFormats::allCases())
        m_picker->addItem(MenuBarFormats::title(format), QVariant::fromValue(int(format)));
    connect(m_picker, &QComboBox::activated, this, [this](int index) {
        m_store.setFormat(MenuBarFormat(m_picker->itemData(index).toInt()));
    });

    m_preview->setObjectName(QStringLiteral("live-preview"));
    m_preview->setFont(AppStyle::monospacedFont(13));
    m_preview->setTextFormat(Qt::PlainText);
    // Selectable and copyable, by mouse and by keyboard.
    m_preview->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_preview->setFocusPolicy(Qt::StrongFocus);
    m_preview->setCursor(Qt::IBeamCursor);
    m_preview->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);

    m_pinHint->setObjectName(QStringLiteral("pin-hint"));
    m_pinHint->setWordWrap(true);
    m_pinHint->setText(QStringLiteral("Pin a city in the Cities tab to show its time in the menu "
                                      "bar. Until then, you\u2019ll see a globe."));

    auto *previewColumn = new QWidget;
    auto *previewLayout = new QVBoxLayout(previewColumn);
    previewLayout->setContentsMargins(0, 8, 0, 8);
    previewLayout->setSpacing(12);
    previewLayout->addWidget(new Eyebrow(QStringLiteral("Live preview")));
    previewLayout->addWidget(m_preview);
    previewLayout->addWidget(m_pinHint);

    auto *glance = new FormGroup(QStringLiteral("At a glance"),
                                 QStringLiteral("Nicknames appear in the menu bar too. Keep them "
                                                "short to leave room for your other apps."));
    glance->addRow(QStringLiteral("Time format"), m_picker);
    glance->addRow(previewColumn);

    m_pinnedCount->setObjectName(QStringLiteral("pinned-count"));
    m_pinnedCount->setFont(AppStyle::uiFont(13));
    auto *database = new TextLine(AppStyle::uiFont(12), TextLine::Tone::secondary);
    database->setWordWrap(true);
    database->setText(
        QStringLiteral("Times and daylight saving changes follow your computer\u2019s "
                       "time zone database automatically."));
    auto *counts = new FormGroup;
    counts->addRow(QStringLiteral("Pinned cities"), m_pinnedCount);
    counts->addRow(database);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(20);
    layout->addWidget(glance);
    layout->addWidget(counts);
    layout->addStretch();

    connect(&m_store, &ZoneStore::formatChanged, this, &MenuBarTab::updateFormat);
    auto *previewUpdate = new ShownUpdate(this, [this] { updatePreview(); });
    connect(&m_store, &ZoneStore::formatChanged, previewUpdate, &ShownUpdate::request);
    connect(&m_store, &ZoneStore::zonesChanged, previewUpdate, &ShownUpdate::request);
    connect(&m_store, &ZoneStore::zonesChanged, this, &MenuBarTab::updatePinned);
    connect(&m_clock, &Clock::nowChanged, previewUpdate, &ShownUpdate::request);
    updateFormat();
    updatePreview();
    updatePinned();
}

void MenuBarTab::updateFormat()
{
    m_picker->setCurrentIndex(m_picker->findData(int(m_store.format())));
}

void MenuBarTab::updatePreview()
{
    const QString text = SettingsTexts::previewText(m_store.zones(), m_store.format(),
                                                    m_clock.now(), TimeZoneDatabase::localZone());
    // Setting the same text again would drop the user's selection every tick.
    if (text != m_preview->text())
        m_preview->setText(text);
}

void MenuBarTab::updatePinned()
{
    const qsizetype pinned = m_store.pinnedZones().size();
    m_pinnedCount->setText(QString::number(pinned));
    m_pinHint->setVisible(pinned == 0);
}
