#pragma once

#include <QAccessibleWidget>

// How assistive technology sees one of our top-level windows: a window named
// by its title, rather than the unnamed filler a plain widget would be.
class WindowAccessible final : public QAccessibleWidget
{
public:
    static constexpr char markProperty[] = "zonaraWindow";

    explicit WindowAccessible(QWidget *widget);

    // Marks a top-level widget as a window. Call before anything asks for its
    // accessible interface, which is cached once made.
    static void mark(QWidget *widget);

    QString text(QAccessible::Text t) const override;
};
