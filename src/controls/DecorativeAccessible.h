#pragma once

#include <QAccessibleWidget>

// How assistive technology sees a purely decorative widget (the world mark,
// a drag handle): an invisible graphic without name or children, which
// screen readers skip.
class DecorativeAccessible final : public QAccessibleWidget
{
public:
    static constexpr char markProperty[] = "zonaraDecorative";

    explicit DecorativeAccessible(QWidget *widget);

    // Marks a widget as decoration. Call before anything asks for its
    // accessible interface, which is cached once made.
    static void hide(QWidget *widget);
    static bool isHidden(const QWidget *widget);

    QAccessible::State state() const override;
    QString text(QAccessible::Text t) const override;
    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
};
