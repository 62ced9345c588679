#pragma once

#include <QProxyStyle>

/// Draws the toolkit's own pieces (menus, scroll bars, push buttons of message boxes) to match the window's controls.
///
/// A style, not a style sheet: only a style sees the system's palette before the widgets do and can map it without
/// cutting the widgets off from later changes.
class Style final : public QProxyStyle {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Style)

public:
    Style();
    ~Style() override;

    using QProxyStyle::polish;
    void polish(QPalette &palette) override;
    int styleHint(
        StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returnData) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    void drawPrimitive(
        PrimitiveElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const override;
    void drawControl(
        ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
        const QWidget *widget) const override;
    QSize sizeFromContents(
        ContentsType type, const QStyleOption *option, const QSize &size, const QWidget *widget) const override;

private:
    void drawMenuItem(const QStyleOption &option, QPainter &painter, const QWidget *widget) const;
};
