#include "ZoneListView.h"

#include "AccessibleRetirement.h"
#include "AddZoneButton.h"
#include "AddZoneView.h"
#include "AppStyle.h"
#include "Divider.h"
#include "Eyebrow.h"
#include "ReturnPressesButtons.h"
#include "SaveErrorLine.h"
#include "ShiftStrip.h"
#include "TextLine.h"
#include "WorldMark.h"
#include "ZoneCollectionView.h"
#include "ZoneStore.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QShortcut>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace {

QPushButton *footerButton(const QString &text, const QString &objectName)
{
    auto *button = new QPushButton(text);
    button->setObjectName(objectName);
    button->setFlat(true);
    button->setAutoDefault(false);
    button->setFont(AppStyle::uiFont(12));
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

} // namespace

ZoneListView::ZoneListView(ZoneStore &store, Clock &clock, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_clock(clock)
    , m_pages(new QStackedLayout(this))
    , m_list(new QWidget)
    , m_count(new Eyebrow)
    , m_saveError(new SaveErrorLine(store))
    , m_shiftStrip(new ShiftStrip)
    , m_collection(new ZoneCollectionView(store, clock, false))
    , m_updateButton(footerButton(QString(), QStringLiteral("tray-check-updates")))
    , m_settingsButton(
          footerButton(QStringLiteral("Settings\u2026"), QStringLiteral("open-settings")))
{
    setObjectName(QStringLiteral("zone-list"));
    ReturnPressesButtons::install();
    setFixedSize(panelWidth, panelHeight);

    // Header: the mark, the name and the line under it.
    auto *name = new TextLine(AppStyle::uiFont(18, QFont::DemiBold));
    name->setText(QStringLiteral("Zonara"));
    auto *names = new QVBoxLayout;
    names->setSpacing(3);
    names->addWidget(name);
    names->addWidget(new Eyebrow(QStringLiteral("A little closer, everywhere")));
    auto *header = new QHBoxLayout;
    header->setContentsMargins(20, 20, 20, 20);
    header->setSpacing(12);
    header->addWidget(new WorldMark);
    header->addLayout(names);
    header->addStretch();

    // The count of cities and "Add city".
    m_count->setObjectName(QStringLiteral("city-count"));
    auto *add = new AddZoneButton;
    add->setObjectName(QStringLiteral("add-city-button"));
    add->setControlSize(AddZoneButton::ControlSize::small);
    connect(add, &QPushButton::clicked, this, &ZoneListView::showAdd);
    // Down from the header goes on into the list, as Tab does.
    add->installEventFilter(this);
    m_addButton = add;
    auto *countRow = new QHBoxLayout;
    countRow->setContentsMargins(20, 0, 20, 12);
    countRow->addWidget(m_count);
    countRow->addStretch();
    countRow->addWidget(add);

    // Footer: settings, the update check and quit.
    m_settingsButton->setToolTip(QStringLiteral("Settings\u2026 (Ctrl+,)"));
    connect(m_settingsButton, &QPushButton::clicked, this, &ZoneListView::settingsRequested);
    m_updateButton->setToolTip(QStringLiteral("Check for Updates\u2026"));
    m_updateButton->setAccessibleName(QStringLiteral("Check for Updates\u2026"));
    m_updateButton->setEnabled(false);
    connect(m_updateButton, &QPushButton::clicked, this, &ZoneListView::updateCheckRequested);
    auto *quit = footerButton(QStringLiteral("Quit"), QStringLiteral("quit"));
    quit->setToolTip(QStringLiteral("Quit Zonara (Ctrl+Q)"));
    connect(quit, &QPushButton::clicked, this, &ZoneListView::quitRequested);
    m_saveError->setContentsMargins(20, 10, 20, 0);
    auto *footer = new QHBoxLayout;
    footer->setContentsMargins(20, 14, 20, 14);
    footer->addWidget(m_settingsButton);
    footer->addStretch();
    footer->addWidget(m_updateButton);
    footer->addWidget(quit);

    // Shortcuts of the whole panel, wherever the focus is inside it.
    auto *settingsShortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma), this);
    settingsShortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(settingsShortcut, &QShortcut::activated, m_settingsButton, &QPushButton::click);
    auto *quitShortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q), this);
    quitShortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(quitShortcut, &QShortcut::activated, quit, &QPushButton::click);

    // Planning across zones: the cards show another moment while the strip says which.
    m_collection->setCanShiftTime(true);
    connect(m_collection, &ZoneCollectionView::shiftTextChanged, m_shiftStrip,
            &ShiftStrip::setText);
    connect(m_shiftStrip, &ShiftStrip::backToNowRequested, this, [this] {
        m_collection->backToNow();
        m_collection->focusList();
    });
    auto *stripRow = new QHBoxLayout;
    stripRow->setContentsMargins(16, 0, 16, 6);
    stripRow->addWidget(m_shiftStrip);

    auto *list = new QVBoxLayout(m_list);
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(0);
    list->addLayout(header);
    list->addLayout(countRow);
    list->addLayout(stripRow);
    list->addWidget(m_collection, 1);
    list->addWidget(new Divider);
    list->addWidget(m_saveError);
    list->addLayout(footer);
    m_pages->addWidget(m_list);
    QWidget::setTabOrder(add, m_shiftStrip->backButton());
    QWidget::setTabOrder(m_shiftStrip->backButton(), m_collection->focusTarget());

    connect(&m_store, &ZoneStore::zonesChanged, this, &ZoneListView::updateCount);
    updateCount();
    updateTint();
}

void ZoneListView::setCanCheckForUpdates(bool canCheck)
{
    m_updateButton->setEnabled(canCheck);
}

void ZoneListView::showAdd()
{
    if (m_addView)
        return;
    // A fresh search each time: nothing typed survives closing it.
    m_addView = new AddZoneView(m_store, m_clock, true);
    connect(m_addView, &AddZoneView::closeRequested, this, &ZoneListView::showList);
    m_pages->addWidget(m_addView);
    m_pages->setCurrentWidget(m_addView); // hides the list, which saves an open rename
}

void ZoneListView::showList()
{
    if (!m_addView)
        return;
    m_pages->setCurrentWidget(m_list);
    AccessibleRetirement::deleteLater(m_addView);
    m_addView = nullptr;
    m_collection->focusList();
}

void ZoneListView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    // The panel always opens on the list.
    showList();
}

void ZoneListView::keyPressEvent(QKeyEvent *event)
{
    // Escape first comes back to now; only at now does it close the panel.
    if (event->key() == Qt::Key_Escape && !m_collection->shiftText().isEmpty()) {
        m_collection->backToNow();
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

void ZoneListView::updateCount()
{
    m_count->setTitle(QStringLiteral("Your cities \u00b7 %1").arg(m_store.zones().size()));
}

bool ZoneListView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_addButton && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down) {
        m_collection->focusList();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ZoneListView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !m_tinting)
        updateTint();
}

void ZoneListView::updateTint()
{
    // Every control inside takes the accent: selections, focus, the footer's symbols.
    m_tinting = true;
    const QPalette tinted = AppStyle::tinted(palette());
    setPalette(tinted);
    m_settingsButton->setIcon(
        AppStyle::symbol(QStringLiteral("sliders"), tinted.color(QPalette::ButtonText), 16));
    m_updateButton->setIcon(
        AppStyle::symbol(QStringLiteral("refresh"), tinted.color(QPalette::ButtonText), 16));
    m_tinting = false;
}
