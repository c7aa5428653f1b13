#include "AddZoneView.h"

#include "AccessibleRetirement.h"
#include "AppStyle.h"
#include "CitySearchField.h"
#include "Clock.h"
#include "Eyebrow.h"
#include "ShownUpdate.h"
#include "TextLine.h"
#include "ZoneChoices.h"
#include "ZoneResultDelegate.h"
#include "ZoneResultsAccessible.h"
#include "ZoneResultsModel.h"
#include "ZoneStore.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

const QString searchPrompt = QStringLiteral("Search city, country, or time zone");

} // namespace

AddZoneView::AddZoneView(ZoneStore &store, Clock &clock, bool isEmbedded, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_clock(clock)
    , m_model(new ZoneResultsModel(this))
    , m_field(new CitySearchField(searchPrompt))
    , m_caption(new Eyebrow)
    , m_pages(new QStackedWidget)
    , m_list(new QListView)
    , m_placeholder(new QWidget)
    , m_placeholderTitle(new TextLine(AppStyle::uiFont(15, QFont::DemiBold)))
    , m_placeholderSymbol(new QLabel)
    , m_closeButton(new QPushButton(isEmbedded ? QStringLiteral("Back") : QStringLiteral("Done")))
{
    setObjectName(QStringLiteral("add-city"));
    if (!isEmbedded)
        setMinimumSize(450, 440);

    auto *title = new TextLine(AppStyle::uiFont(17, QFont::DemiBold));
    title->setText(QStringLiteral("Add a city"));
    auto *subtitle = new TextLine(AppStyle::uiFont(12), TextLine::Tone::secondary);
    subtitle->setText(QStringLiteral("There\u2019s always someone awake somewhere."));
    auto *headings = new QVBoxLayout;
    headings->setSpacing(4);
    headings->addWidget(title);
    headings->addWidget(subtitle);
    m_closeButton->setObjectName(QStringLiteral("add-city-close"));
    m_closeButton->setAutoDefault(false);
    // The style's 80-pixel minimum would squeeze the line beside it.
    m_closeButton->setFixedWidth(
        m_closeButton->fontMetrics().horizontalAdvance(m_closeButton->text()) + 28);
    connect(m_closeButton, &QPushButton::clicked, this, &AddZoneView::closeRequested);
    auto *header = new QHBoxLayout;
    // The headings take all the room the button leaves.
    header->addLayout(headings, 1);
    header->addWidget(m_closeButton, 0, Qt::AlignTop);

    m_field->setObjectName(QStringLiteral("city-search"));
    m_field->setAccessibleName(searchPrompt);
    m_field->setFixedHeight(30);
    connect(m_field, &QLineEdit::textEdited, this, &AddZoneView::setQuery);
    connect(m_field, &FocusedTextInput::cancelRequested, this, &AddZoneView::closeRequested);
    // Return in the field chooses nothing: the list is where choices are made.
    m_field->installEventFilter(this);

    m_caption->setObjectName(QStringLiteral("add-city-caption"));

    m_list->setObjectName(QStringLiteral("add-city-results"));
    ZoneResultsAccessible::install(m_list->objectName());
    m_list->setAccessibleName(QStringLiteral("Cities and time zones"));
    m_list->setModel(m_model);
    m_list->setItemDelegate(new ZoneResultDelegate(m_list));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setMouseTracking(true);
    m_list->setUniformItemSizes(true);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->viewport()->setAutoFillBackground(false);
    m_list->setAutoFillBackground(false);
    m_list->installEventFilter(this);
    connect(m_list, &QListView::clicked, this,
            [this](const QModelIndex &index) { choose(index.row()); });
    connect(m_list, &QListView::activated, this,
            [this](const QModelIndex &index) { choose(index.row()); });

    m_placeholder->setObjectName(QStringLiteral("add-city-no-results"));
    m_placeholderSymbol->setAlignment(Qt::AlignCenter);
    m_placeholderTitle->setAlignment(Qt::AlignCenter);
    m_placeholderTitle->setElides(true);
    auto *placeholderText =
        new TextLine(AppStyle::uiFont(12), TextLine::Tone::secondary, m_placeholder);
    placeholderText->setText(
        QStringLiteral("Check the spelling, or try a country or a time zone."));
    placeholderText->setAlignment(Qt::AlignCenter);
    placeholderText->setWordWrap(true);
    auto *placeholderLayout = new QVBoxLayout(m_placeholder);
    placeholderLayout->addStretch();
    placeholderLayout->addWidget(m_placeholderSymbol);
    placeholderLayout->addWidget(m_placeholderTitle);
    placeholderLayout->addWidget(placeholderText);
    placeholderLayout->addStretch(2);

    m_pages->addWidget(m_list);
    m_pages->addWidget(m_placeholder);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->setSpacing(16);
    layout->addLayout(header);
    layout->addWidget(m_field);
    layout->addWidget(m_caption);
    layout->addWidget(m_pages, 1);

    connect(&m_store, &ZoneStore::zonesChanged, this,
            [this] { m_model->setSavedZones(m_store.zones()); });
    auto *timesUpdate = new ShownUpdate(this, [this] { updateTimes(); });
    connect(&m_store, &ZoneStore::formatChanged, timesUpdate, &ShownUpdate::request);
    connect(&m_clock, &Clock::nowChanged, timesUpdate, &ShownUpdate::request);
    m_model->setSavedZones(m_store.zones());
    updateTimes();
    setQuery(QString());
    updateTint();
}

AddZoneView::~AddZoneView()
{
    // The results' interfaces read the model, which goes before QWidget's part.
    AccessibleRetirement::retire(this);
}

void AddZoneView::setQuery(const QString &query)
{
    m_query = query;
    m_caption->setTitle(query.isEmpty() ? QStringLiteral("A few places to start")
                                        : QStringLiteral("Search results"));
    m_model->setResults(ZoneChoices::results(query));
    if (m_model->rowCount() == 0) {
        m_placeholderTitle->setText(QStringLiteral("No results for \u201c%1\u201d").arg(query));
        m_placeholder->setAccessibleName(m_placeholderTitle->text());
        m_pages->setCurrentWidget(m_placeholder);
    } else {
        m_pages->setCurrentWidget(m_list);
        m_list->scrollToTop();
    }
}

void AddZoneView::updateTimes()
{
    m_model->setTime(m_store.format(), m_clock.now());
}

void AddZoneView::choose(int row)
{
    if (row < 0 || row >= m_model->rowCount() ||
        !(m_model->flags(m_model->index(row)) & Qt::ItemIsEnabled))
        return;
    const ZoneSearchResult result = m_model->results().at(row);
    m_store.add(result.identifier, ZoneChoices::nicknameToSave(result), false);
    Q_EMIT closeRequested();
}

void AddZoneView::focusFirstResult()
{
    if (m_pages->currentWidget() != m_list)
        return;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const QModelIndex index = m_model->index(row);
        if (m_model->flags(index) & Qt::ItemIsEnabled) {
            m_list->setFocus(Qt::TabFocusReason);
            m_list->setCurrentIndex(index);
            return;
        }
    }
}

bool AddZoneView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (watched == m_field && key->key() == Qt::Key_Down) {
            focusFirstResult();
            return true;
        }
        if (watched == m_list) {
            if (key->key() == Qt::Key_Space && m_list->currentIndex().isValid()) {
                choose(m_list->currentIndex().row());
                return true;
            }
            if (key->key() == Qt::Key_Up && m_list->currentIndex().row() <= 0) {
                m_field->setFocus(Qt::BacktabFocusReason);
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}

void AddZoneView::keyPressEvent(QKeyEvent *event)
{
    // Escape anywhere in the view leaves the search, not the panel.
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT closeRequested();
        return;
    }
    QWidget::keyPressEvent(event);
}

void AddZoneView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        updateTint();
}

void AddZoneView::updateTint()
{
    m_placeholderSymbol->setPixmap(AppStyle::symbolPixmap(
        QStringLiteral("search"), AppStyle::secondaryText(palette()), 36, devicePixelRatioF()));
}
