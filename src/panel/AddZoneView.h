#pragma once

#include <QWidget>

class CitySearchField;
class Clock;
class Eyebrow;
class QLabel;
class QListView;
class QPushButton;
class QStackedWidget;
class TextLine;
class ZoneResultsModel;
class ZoneStore;
struct ZoneSearchResult;

// Finding a city or time zone to add: the search field has the focus from
// the start; six suggestions show until something is typed, then the search
// results. Choosing one adds it through the store and closes the view.
class AddZoneView final : public QWidget
{
    Q_OBJECT

public:
    // Embedded in the panel the close button reads "Back"; in the settings
    // window's sheet it reads "Done".
    AddZoneView(ZoneStore &store, Clock &clock, bool isEmbedded, QWidget *parent = nullptr);
    ~AddZoneView() override;

    QString query() const { return m_query; }
    const ZoneResultsModel &results() const { return *m_model; }

Q_SIGNALS:
    // Back or Done, Escape, or a city was chosen.
    void closeRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void setQuery(const QString &query);
    void updateTimes();
    void choose(int row);
    void focusFirstResult();
    void updateTint();

    ZoneStore &m_store;
    Clock &m_clock;
    QString m_query;
    ZoneResultsModel *m_model;
    CitySearchField *m_field;
    Eyebrow *m_caption;
    QStackedWidget *m_pages;
    QListView *m_list;
    QWidget *m_placeholder;
    TextLine *m_placeholderTitle;
    QLabel *m_placeholderSymbol;
    QPushButton *m_closeButton;
};
