#include "SettingsView.h"

#include "AccessibleRetirement.h"
#include "AddZoneButton.h"
#include "AddZoneView.h"
#include "AppStyle.h"
#include "Divider.h"
#include "Eyebrow.h"
#include "GeneralTab.h"
#include "MenuBarTab.h"
#include "ReturnPressesButtons.h"
#include "SaveErrorLine.h"
#include "TextLine.h"
#include "WorkingHoursGroup.h"
#include "WorldMark.h"
#include "ZoneCollectionView.h"

#include <QDialog>
#include <QEvent>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

// A form tab scrolls when the window is too short for it.
QScrollArea *scrolling(QWidget *content)
{
    auto *scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    content->setContentsMargins(20, 16, 20, 16);
    scroll->setWidget(content);
    scroll->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    return scroll;
}

const char *const tabSymbols[] = {"world", "menubar", "gear"};

} // namespace

SettingsView::SettingsView(ZoneStore &store, Clock &clock, AppUpdater &updates, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_clock(clock)
    , m_tabs(new QTabWidget)
    , m_generalTab(new GeneralTab(updates))
{
    setObjectName(QStringLiteral("settings"));
    ReturnPressesButtons::install();
    setFixedSize(viewWidth, viewHeight);

    auto *title = new TextLine(AppStyle::uiFont(23, QFont::DemiBold));
    title->setText(QStringLiteral("Make yourself at home"));
    auto *subtitle = new TextLine(AppStyle::uiFont(13), TextLine::Tone::secondary);
    subtitle->setText(QStringLiteral("Your cities. Your names. Your corner of the world."));
    auto *titles = new QVBoxLayout;
    titles->setSpacing(4);
    titles->addWidget(title);
    titles->addWidget(subtitle);
    auto *header = new QHBoxLayout;
    header->setContentsMargins(24, 24, 24, 24);
    header->setSpacing(14);
    header->addWidget(new WorldMark);
    header->addLayout(titles);
    header->addStretch();

    m_tabs->setObjectName(QStringLiteral("settings-tabs"));
    m_tabs->setDocumentMode(true);
    m_tabs->addTab(makeCitiesTab(), QStringLiteral("Cities"));
    m_tabs->addTab(scrolling(new MenuBarTab(store, clock)), QStringLiteral("Menu bar"));
    m_tabs->addTab(scrolling(m_generalTab), QStringLiteral("General"));
    connect(m_generalTab, &GeneralTab::quitRequested, this, &SettingsView::quitRequested);
    auto *tabArea = new QVBoxLayout;
    tabArea->setContentsMargins(16, 16, 16, 16);
    tabArea->addWidget(m_tabs);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(new Divider);
    layout->addLayout(tabArea, 1);
    // The footer: shown only while the preferences cannot be saved.
    auto *saveError = new SaveErrorLine(store);
    saveError->setContentsMargins(24, 0, 24, 12);
    layout->addWidget(saveError);

    updateLook();
}

QWidget *SettingsView::makeCitiesTab()
{
    auto *hint = new TextLine(AppStyle::uiFont(12), TextLine::Tone::secondary);
    hint->setText(QStringLiteral("Drag to reorder. Double-click a name to rename."));
    auto *captions = new QVBoxLayout;
    captions->setSpacing(4);
    captions->addWidget(new Eyebrow(QStringLiteral("Your world")));
    captions->addWidget(hint);
    auto *add = new AddZoneButton;
    add->setObjectName(QStringLiteral("add-city-button"));
    connect(add, &QPushButton::clicked, this, &SettingsView::showAdd);
    auto *top = new QHBoxLayout;
    top->setContentsMargins(20, 16, 20, 0);
    top->addLayout(captions);
    top->addStretch();
    top->addWidget(add, 0, Qt::AlignVCenter);

    auto *collection = new ZoneCollectionView(m_store, m_clock, true);
    auto *hours = new WorkingHoursGroup(m_store);
    hours->setContentsMargins(20, 0, 20, 16);
    auto *tab = new QWidget;
    auto *layout = new QVBoxLayout(tab);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(14);
    layout->addLayout(top);
    layout->addWidget(collection, 1);
    layout->addWidget(hours);
    return tab;
}

void SettingsView::showAdd()
{
    if (m_addSheet) {
        m_addSheet->raise();
        m_addSheet->activateWindow();
        return;
    }
    // A sheet over this window: it blocks the window, not the panel.
    auto *sheet = new QDialog(window());
    sheet->setObjectName(QStringLiteral("add-city-sheet"));
    sheet->setWindowTitle(QStringLiteral("Add a city"));
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->setPalette(palette());
    auto *view = new AddZoneView(m_store, m_clock, false);
    auto *layout = new QVBoxLayout(sheet);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
    connect(view, &AddZoneView::closeRequested, sheet, &QDialog::accept);
    // However it closes (Done, Escape, a choice, the window's close button),
    // the button opens a new one.
    connect(sheet, &QDialog::finished, this, [this, sheet] {
        AccessibleRetirement::retire(sheet);
        m_addSheet = nullptr;
    });
    m_addSheet = sheet;
    sheet->show();
}

void SettingsView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_generalTab->refreshLoginStatus();
}

void SettingsView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // Coming back, for instance from the desktop's startup settings.
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_generalTab->refreshLoginStatus();
    if (event->type() == QEvent::PaletteChange && !m_updatingLook)
        updateLook();
}

void SettingsView::updateLook()
{
    m_updatingLook = true;
    const QPalette tinted = AppStyle::tinted(palette());
    setPalette(tinted);
    const QColor symbolColour = tinted.color(QPalette::WindowText);
    for (int i = 0; i < m_tabs->count(); ++i)
        m_tabs->setTabIcon(i,
                           AppStyle::symbol(QString::fromLatin1(tabSymbols[i]), symbolColour, 16));
    m_updatingLook = false;
}
