#pragma once

#include "foundation/ByteReader.h"

#include <QByteArray>

/// Small valid pictures, made here byte by byte.
namespace quorvane::test {

/// A segment of a JPEG file; `marker` such as 0xe1.
QByteArray jpegSegment(int marker, const QByteArray& payload);
/// An Exif segment with this block.
QByteArray exifSegment(const QByteArray& block);
/// A grey JPEG picture of 8 by 8 with these segments behind SOI.
QByteArray jpegOf(const QByteArray& segments);
/// From the first scan on.
QByteArray scanOf(const QByteArray& jpeg);

QByteArray pngChunk(const QByteArray& type, const QByteArray& data);
/// A grey PNG picture of one pixel with these chunks before and behind its image data.
QByteArray pngOf(const QByteArray& before, const QByteArray& behind = {});

QByteArray riffChunk(const QByteArray& type, const QByteArray& data);
QByteArray webpOf(const QByteArray& chunks);
/// A lossless picture of `width` by `height`; the bits of the picture itself are not there.
QByteArray losslessChunk(quint32 width, quint32 height, bool alpha);

/// A TIFF of one grey pixel.
QByteArray tiffOf(ByteOrder order, bool big);

} // namespace quorvane::test
