#pragma once

#include "TextLine.h"

// A section caption: the title upper-cased in small, spaced, fixed-pitch
// letters in the secondary colour.
class Eyebrow final : public TextLine
{
    Q_OBJECT

public:
    explicit Eyebrow(const QString &title = QString(), QWidget *parent = nullptr);

    QString title() const { return m_title; }
    void setTitle(const QString &title);

private:
    QString m_title;
};
