#include "metadata/exif/GpsFields.h"

#include "metadata/LocalCalendar.h"

#include <cmath>

namespace quorvane {

namespace {

using tiff::Field;

constexpr std::uint64_t arcSecondParts = 1'000'000;

struct Rational {
    std::uint64_t numerator = 0;
    std::uint64_t denominator = 1;
};

Field rationals(std::uint16_t tag, const std::vector<Rational>& values, ByteOrder order) {
    Field field{tag, tiff::rationalType, values.size(), {}};
    for (const Rational& value : values) {
        tiff::appendNumber(field.bytes, value.numerator, 4, order);
        tiff::appendNumber(field.bytes, value.denominator, 4, order);
    }
    return field;
}

Field angle(std::uint16_t tag, double degrees, ByteOrder order) {
    // Rounded once, as a whole, so that no minute or second ever reads 60.
    const auto parts = static_cast<std::uint64_t>(
        std::llround(std::abs(degrees) * 3600.0 * static_cast<double>(arcSecondParts)));
    const std::uint64_t minutes = parts / (60 * arcSecondParts);
    return rationals(
        tag, {{minutes / 60}, {minutes % 60}, {parts % (60 * arcSecondParts), arcSecondParts}},
        order);
}

Field timeOfDay(std::uint16_t tag, Date date, ByteOrder order) {
    const auto day = std::chrono::floor<std::chrono::days>(date);
    const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::seconds>(date - day));
    return rationals(tag,
                     {{static_cast<std::uint64_t>(time.hours().count())},
                      {static_cast<std::uint64_t>(time.minutes().count())},
                      {static_cast<std::uint64_t>(time.seconds().count())}},
                     order);
}

} // namespace

bool isValid(const GeoLocation& location) {
    return std::abs(location.latitude) <= 90 && std::abs(location.longitude) <= 180;
}

std::vector<Field> gpsFields(const GeoLocation& location, Date date, ByteOrder order) {
    constexpr double highest = 4'000'000; // metres; what a rational of millimetres can hold
    std::vector<Field> fields = {
        {0x0000, tiff::byteType, 4, QByteArray("\x02\x03\x00\x00", 4)}, // GPSVersionID
        tiff::asciiField(0x0001, location.latitude < 0 ? "S" : "N"),
        angle(0x0002, location.latitude, order),
        tiff::asciiField(0x0003, location.longitude < 0 ? "W" : "E"),
        angle(0x0004, location.longitude, order),
    };
    if (std::abs(location.altitude) <= highest) {
        const auto millimetres =
            static_cast<std::uint64_t>(std::llround(std::abs(location.altitude) * 1000.0));
        fields.push_back(
            {0x0005, tiff::byteType, 1, QByteArray(1, location.altitude < 0 ? '\1' : '\0')});
        fields.push_back(rationals(0x0006, {{millimetres, 1000}}, order));
    }
    fields.push_back(timeOfDay(0x0007, date, order));
    fields.push_back(tiff::asciiField(0x001d, utcText(date, u"yyyy:MM:dd").toLatin1()));
    return fields;
}

} // namespace quorvane
