/// Form geometry as data.
#pragma once

#include <QString>
#include <QWidget>

/// Twips in one device-independent pixel.
inline constexpr int kTwipsPerPixel = 15;

/// The place of one control, in twips from the upper left corner of the form's client area.
struct ControlPlace {
    const char* control;
    int left;
    int top;
    int width;
    int height;
};

/// Moves the controls of `form` named in `places` to their places.
template <std::size_t n>
void placeControls(const QWidget& form, const ControlPlace (&places)[n]) {
    for (const ControlPlace& place : places)
        form.findChild<QWidget*>(QLatin1String(place.control))
            ->setGeometry(place.left / kTwipsPerPixel, place.top / kTwipsPerPixel, place.width / kTwipsPerPixel,
                          place.height / kTwipsPerPixel);
}
