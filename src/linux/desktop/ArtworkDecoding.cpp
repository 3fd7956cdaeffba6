#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <algorithm>
#include <array>
#include <string_view>

#include "linux/desktop/QtArtworkLoader.h"

namespace sunpane {
namespace {

bool isPlainRaster(const QByteArray& format) {
    static constexpr std::array<std::string_view, 6> formats{"png", "jpeg", "webp", "gif", "bmp", "ico"};
    return std::find(formats.begin(), formats.end(), std::string_view(format.constData(), format.size())) !=
           formats.end();
}

bool isBearable(QSize size) {
    return size.width() > 0 && size.height() > 0 &&
           std::int64_t{size.width()} * size.height() <= QtArtworkLoader::maximumPixels;
}

/// The size with the same shape that fits; at least one pixel each way.
QSize fitting(QSize size) {
    const QSize bound(Artwork::maximumSide, Artwork::maximumSide);
    if (size.width() <= bound.width() && size.height() <= bound.height()) return size;
    return size.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

}  // namespace

std::shared_ptr<const Artwork> decodeArtwork(const std::string& bytes) {
    auto data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    if (!buffer.open(QIODevice::ReadOnly)) return nullptr;
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    if (!isPlainRaster(reader.format()) || !isBearable(reader.size())) return nullptr;
    reader.setScaledSize(fitting(reader.size()));
    QImage image = reader.read();
    if (image.isNull()) return nullptr;
    // Not every format's reader heeds the wish for another size.
    const QSize size = fitting(image.size());
    if (size != image.size()) image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    image = image.convertToFormat(QImage::Format_RGBA8888);
    if (image.isNull()) return nullptr;

    auto artwork = std::make_shared<Artwork>();
    artwork->width = image.width();
    artwork->height = image.height();
    artwork->rgba.reserve(static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) * 4);
    for (int row = 0; row < image.height(); ++row) {
        const uchar* line = image.constScanLine(row);
        artwork->rgba.insert(artwork->rgba.end(), line, line + std::ptrdiff_t{4} * image.width());
    }
    return artwork;
}

}  // namespace sunpane
