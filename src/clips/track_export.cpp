#include "clips/track_export.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>
#include <QXmlStreamWriter>
#include <algorithm>
#include <cmath>

namespace ql240 {
namespace {

constexpr double kKmhPerMetreASecond = 3.6;

// Seven decimals of a degree are about a centimetre.
QString degrees(double value) {
    return QString::number(value, 'f', 7);
}

bool isGiven(double value) {
    return !std::isnan(value);
}

QString number(double value, int places) {
    return isGiven(value) ? QString::number(value, 'f', places) : QString();
}

// The time for formats that require UTC; empty if it is unknown.
QString utcText(const RecordedFix& fix, ClipRecord::Clock clock) {
    return clock == ClipRecord::Clock::Utc && fix.hasClock() ? clockText(fix.clockMs, clock) : QString();
}

// A file name for XML, which excludes most control characters.
QString xmlText(QString name) {
    std::replace_if(
        name.begin(), name.end(), [](QChar c) { return c < u' ' || c == u'\uFFFE' || c == u'\uFFFF'; }, u'?');
    return name;
}

class GpxWriter final : public TrackWriter {
public:
    explicit GpxWriter(QIODevice& device) : m_xml(&device) {
        m_xml.setAutoFormatting(true);
        m_xml.setAutoFormattingIndent(1);
        m_xml.writeStartDocument();
        m_xml.writeStartElement(QStringLiteral("gpx"));
        m_xml.writeDefaultNamespace(QStringLiteral("http://www.topografix.com/GPX/1/1"));
        m_xml.writeNamespace(kExtension, QStringLiteral("gpxtpx"));
        m_xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.1"));
        m_xml.writeAttribute(QStringLiteral("creator"), QStringLiteral("ql240-clip"));
        m_xml.writeStartElement(QStringLiteral("trk"));
    }

    void beginSegment(const QString&, ClipRecord::Clock clock) override {
        if (m_isInSegment)
            m_xml.writeEndElement();
        m_xml.writeStartElement(QStringLiteral("trkseg"));
        m_isInSegment = true;
        m_clock = clock;
    }

    void addPoint(const RecordedFix& fix) override {
        m_xml.writeStartElement(QStringLiteral("trkpt"));
        m_xml.writeAttribute(QStringLiteral("lat"), degrees(fix.latitude));
        // The GPX schema excludes +180.
        const QString east = degrees(fix.longitude);
        m_xml.writeAttribute(QStringLiteral("lon"),
                             east.startsWith(QLatin1String("180")) ? u'-' + east : east);
        writeText(QStringLiteral("ele"), number(fix.altitudeM, 2));
        writeText(QStringLiteral("time"), utcText(fix, m_clock));
        if (isGiven(fix.speedKmh) || isGiven(fix.headingDeg))
            writeExtension(fix);
        m_xml.writeEndElement();
    }

    bool finish() override {
        m_xml.writeEndDocument();
        return !m_xml.hasError();
    }

private:
    void writeText(const QString& name, const QString& text) {
        if (!text.isEmpty())
            m_xml.writeTextElement(name, text);
    }

    void writeExtension(const RecordedFix& fix) {
        m_xml.writeStartElement(QStringLiteral("extensions"));
        m_xml.writeStartElement(kExtension, QStringLiteral("TrackPointExtension"));
        if (isGiven(fix.speedKmh))
            m_xml.writeTextElement(kExtension, QStringLiteral("speed"),
                                   number(fix.speedKmh / kKmhPerMetreASecond, 3));
        if (isGiven(fix.headingDeg))
            m_xml.writeTextElement(kExtension, QStringLiteral("course"),
                                   number(std::fmod(std::round(fix.headingDeg * 100) / 100, 360), 2));
        m_xml.writeEndElement();
        m_xml.writeEndElement();
    }

    const QString kExtension = QStringLiteral("http://www.garmin.com/xmlschemas/TrackPointExtension/v2");
    QXmlStreamWriter m_xml;
    bool m_isInSegment = false;
    ClipRecord::Clock m_clock = ClipRecord::Clock::None;
};

// Buffers one segment at a time.
class SegmentWriter : public TrackWriter {
public:
    void beginSegment(const QString& clip, ClipRecord::Clock clock) override {
        endSegment();
        m_clip = clip;
        m_clock = clock;
    }
    // Starts a new segment at the antimeridian, where a line would otherwise run around the earth.
    void addPoint(const RecordedFix& fix) override {
        if (!m_points.empty() && std::abs(fix.longitude - m_points.back().longitude) > 180)
            endSegment();
        m_points.push_back(fix);
    }

protected:
    virtual void writeSegment() = 0;

    void endSegment() {
        if (!m_points.empty())
            writeSegment();
        m_points.clear();
    }

    QString m_clip;
    ClipRecord::Clock m_clock = ClipRecord::Clock::None;
    std::deque<RecordedFix> m_points;
};

// Writes a gx:Track, which lists all times before all positions; a line or point if a point has no time.
class KmlWriter final : public SegmentWriter {
public:
    explicit KmlWriter(QIODevice& device) : m_xml(&device) {
        m_xml.setAutoFormatting(true);
        m_xml.setAutoFormattingIndent(1);
        m_xml.writeStartDocument();
        m_xml.writeStartElement(QStringLiteral("kml"));
        m_xml.writeDefaultNamespace(QStringLiteral("http://www.opengis.net/kml/2.2"));
        m_xml.writeNamespace(kExtension, QStringLiteral("gx"));
        m_xml.writeStartElement(QStringLiteral("Document"));
    }

    bool finish() override {
        endSegment();
        m_xml.writeEndDocument();
        return !m_xml.hasError();
    }

private:
    void writeSegment() override {
        m_xml.writeStartElement(QStringLiteral("Placemark"));
        m_xml.writeTextElement(QStringLiteral("name"), xmlText(m_clip));
        const bool hasTimes = std::all_of(m_points.begin(), m_points.end(), [this](const RecordedFix& fix) {
            return !utcText(fix, m_clock).isEmpty();
        });
        if (hasTimes)
            writeTrack();
        else
            writeLine();
        m_xml.writeEndElement();
    }

    void writeTrack() {
        m_xml.writeStartElement(kExtension, QStringLiteral("Track"));
        for (const RecordedFix& fix : m_points)
            m_xml.writeTextElement(QStringLiteral("when"), utcText(fix, m_clock));
        for (const RecordedFix& fix : m_points)
            m_xml.writeTextElement(kExtension, QStringLiteral("coord"), place(fix, u' '));
        m_xml.writeEndElement();
    }

    void writeLine() {
        m_xml.writeStartElement(m_points.size() > 1 ? QStringLiteral("LineString") : QStringLiteral("Point"));
        m_xml.writeStartElement(QStringLiteral("coordinates"));
        for (const RecordedFix& fix : m_points)
            m_xml.writeCharacters(place(fix, u',') + u' ');
        m_xml.writeEndElement();
        m_xml.writeEndElement();
    }

    // The default altitude mode ignores altitudes, so 0 is safe where there is none.
    static QString place(const RecordedFix& fix, QChar separator) {
        return degrees(fix.longitude) + separator + degrees(fix.latitude) + separator +
               number(isGiven(fix.altitudeM) ? fix.altitudeM : 0, 2);
    }

    const QString kExtension = QStringLiteral("http://www.google.com/kml/ext/2.2");
    QXmlStreamWriter m_xml;
};

// Writes one feature per segment: a line, or a point if there is only one. The points' times are in its
// properties.
class GeoJsonWriter final : public SegmentWriter {
public:
    explicit GeoJsonWriter(QIODevice& device) : m_device(device) {
        write("{\"type\": \"FeatureCollection\", \"features\": [");
    }

    bool finish() override {
        endSegment();
        write("\n]}\n");
        return m_isWell;
    }

private:
    void writeSegment() override {
        QJsonArray places;
        QJsonArray times;
        QJsonArray speeds;
        QJsonArray courses;
        for (const RecordedFix& fix : m_points) {
            QJsonArray place{rounded(fix.longitude), rounded(fix.latitude)};
            if (isGiven(fix.altitudeM))
                place.append(fix.altitudeM);
            places.append(place);
            const QString time = utcText(fix, m_clock);
            times.append(time.isEmpty() ? QJsonValue() : QJsonValue(time));
            speeds.append(orNull(fix.speedKmh));
            courses.append(orNull(fix.headingDeg));
        }
        const bool isLine = places.size() > 1;
        const QJsonObject geometry{
            {QStringLiteral("type"), isLine ? QStringLiteral("LineString") : QStringLiteral("Point")},
            {QStringLiteral("coordinates"), isLine ? places : places[0].toArray()}};
        const QJsonObject properties{{QStringLiteral("clip"), m_clip},
                                     {QStringLiteral("times"), times},
                                     {QStringLiteral("speeds_kmh"), speeds},
                                     {QStringLiteral("courses_deg"), courses}};
        const QJsonObject feature{{QStringLiteral("type"), QStringLiteral("Feature")},
                                  {QStringLiteral("geometry"), geometry},
                                  {QStringLiteral("properties"), properties}};
        write(m_hasFeature ? ",\n" : "\n");
        write(QJsonDocument(feature).toJson(QJsonDocument::Compact));
        m_hasFeature = true;
    }

    static double rounded(double value) { return std::round(value * 1e7) / 1e7; }
    static QJsonValue orNull(double value) {
        return isGiven(value) ? QJsonValue(std::round(value * 1000) / 1000) : QJsonValue();
    }

    void write(const QByteArray& bytes) { m_isWell = m_isWell && m_device.write(bytes) == bytes.size(); }

    QIODevice& m_device;
    bool m_isWell = true;
    bool m_hasFeature = false;
};

// A row has a position or an acceleration, never both, because each has its own time.
class CsvWriter final : public TrackWriter {
public:
    CsvWriter(QIODevice& device, bool accelerations) : m_device(device), m_accelerations(accelerations) {
        QString header = QStringLiteral(
            "clip,segment,time_in_clip_s,time,latitude_deg,longitude_deg,altitude_m,speed_kmh,course_deg");
        if (accelerations)
            header += QStringLiteral(",acceleration_x_g,acceleration_y_g,acceleration_z_g");
        write(header + u'\n');
    }

    void beginSegment(const QString& clip, ClipRecord::Clock clock) override {
        QString escaped = clip;
        m_clip = u'"' + escaped.replace(u'"', QStringLiteral("\"\"")) + u'"';
        m_clock = clock;
        ++m_segment;
    }
    void addPoint(const RecordedFix& fix) override {
        const QString time = fix.hasClock() ? clockText(fix.clockMs, m_clock) : QString();
        const QStringList fields{time,
                                 degrees(fix.latitude),
                                 degrees(fix.longitude),
                                 number(fix.altitudeM, 2),
                                 number(fix.speedKmh, 3),
                                 number(fix.headingDeg, 2)};
        writeRow(fix.timeUs, fields.join(u',') + QString(m_accelerations ? 3 : 0, u','));
    }
    void addAcceleration(const RecordedAcceleration& sample) override {
        if (m_accelerations) {
            writeRow(sample.timeUs, QString(6, u',') + number(sample.x, 4) + u',' + number(sample.y, 4) +
                                        u',' + number(sample.z, 4));
        }
    }
    bool finish() override { return m_isWell; }

private:
    void writeRow(std::int64_t timeUs, const QString& fields) {
        const QString time = QString::number(static_cast<double>(timeUs) / 1e6, 'f', 3);
        write(m_clip + u',' + QString::number(m_segment) + u',' + time + u',' + fields + u'\n');
    }
    void write(const QString& text) {
        const QByteArray bytes = text.toUtf8();
        m_isWell = m_isWell && m_device.write(bytes) == bytes.size();
    }

    QIODevice& m_device;
    bool m_accelerations;
    QString m_clip;
    ClipRecord::Clock m_clock = ClipRecord::Clock::None;
    int m_segment = 0;
    bool m_isWell = true;
};

} // namespace

std::optional<TrackFormat> trackFormatOf(const QString& name) {
    constexpr std::pair<const char*, TrackFormat> kNames[] = {{"gpx", TrackFormat::Gpx},
                                                              {"kml", TrackFormat::Kml},
                                                              {"geojson", TrackFormat::GeoJson},
                                                              {"csv", TrackFormat::Csv}};
    for (const auto& [known, format] : kNames) {
        if (name == QLatin1String(known))
            return format;
    }
    return std::nullopt;
}

std::unique_ptr<TrackWriter> makeTrackWriter(TrackFormat format, QIODevice& device, bool accelerations) {
    switch (format) {
        case TrackFormat::Gpx:
            return std::make_unique<GpxWriter>(device);
        case TrackFormat::Kml:
            return std::make_unique<KmlWriter>(device);
        case TrackFormat::GeoJson:
            return std::make_unique<GeoJsonWriter>(device);
        case TrackFormat::Csv:
            return std::make_unique<CsvWriter>(device, accelerations);
    }
    return nullptr;
}

QString clockText(std::int64_t ms, ClipRecord::Clock clock) {
    const QString text = QDateTime::fromMSecsSinceEpoch(ms, QTimeZone::utc())
                             .toString(QStringLiteral("yyyy-MM-ddThh:mm:ss.zzz"));
    return clock == ClipRecord::Clock::Utc ? text + u'Z' : text;
}

} // namespace ql240
