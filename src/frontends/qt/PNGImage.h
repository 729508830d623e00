#pragma once

#include <QImageReader>
#include <QPixmap>

namespace frontend {

/// Reads a PNG file; null when it cannot be read. Unlike QPixmap's constructor, it does not load Qt's
/// plug-ins for all other formats, which would delay the window.
[[nodiscard]] inline QPixmap pixmapFromPNG(const QString& file) {
    QImageReader reader(file, "png");
    reader.setAutoDetectImageFormat(false);
    return QPixmap::fromImage(reader.read());
}

} // namespace frontend
