#pragma once

#include <QString>
#include <QToolButton>

// The icon-only Save and Cancel buttons of an inline rename. They never take
// the keyboard focus, and their object name marks them for NameField, so a
// press on one is not a click elsewhere that would end the edit.
class InlineEditButton final : public QToolButton
{
    Q_OBJECT

public:
    static const QString editActionName;

    // `symbolPath` is an SVG symbol, drawn in the palette's text colour;
    // `title` is the tooltip and the accessible name.
    InlineEditButton(const QString &symbolPath, const QString &title, QWidget *parent = nullptr);

    QString symbolPath() const { return m_symbolPath; }
    void setSymbolPath(const QString &symbolPath);
    QString title() const { return m_title; }
    void setTitle(const QString &title);

protected:
    void changeEvent(QEvent *event) override;

private:
    void updateSymbol();

    QString m_symbolPath;
    QString m_title;
};
