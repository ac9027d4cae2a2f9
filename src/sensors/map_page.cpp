#include "sensors/map_page.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>
#include <cmath>

#include "platform/limits.h"

namespace ql240 {
namespace {

constexpr int kLevel = 9;

constexpr char kPage[] = R"page(<html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=utf-8">
<script type="text/javascript" src="http://map.ql240.invalid/BlackBox/ajaxMap/jQuery1.5.1-clickeventerror.js"></script>
<script type="text/javascript" src="http://map.ql240.invalid/BlackBox/ajaxMap/newMap/KMlib_V1_3.js"></script>
<script type="text/javascript" src="http://map.ql240.invalid/BlackBox/ajaxMap/newMap/MISA_V2_06_offline.js"></script>
<script type="text/javascript" src="http://map.ql240.invalid/BlackBox/ajaxMap/newMap/Index_newMap.js"></script>
<script type="text/javascript">
$(document).ready(function() {
    KORVAMAP.initMap("KorvaMap", 163670, 526934, 12, function() {}, 2);
    MapMoveToAuto('%f','%f','%d');
});
function init() {
    KORVAMAP.initMap("KorvaMap", 163670, 526934, 12, function() {}, 2);
}
function go(lat, lng) {
    KORVAMAP.initMap("KorvaMap", 163670, 526934, 12, function() {}, 2);
    MapMoveToAuto(lat, lng,'9');
}
</script>
</head>
<body bgcolor="#ffffff" topmargin="0" leftmargin="0" marginwidth="0" marginheight="0" scroll="no" onload="init()">
<div id="KorvaMap" style="width:320px; height:205px; margin:0px; padding:0px;"></div>
</body>
</html>
)page";

// Damaged clips may contain other positions: they end a stretch, as a lost fix does.
bool isOnEarth(const SensorSample& sample) {
    return std::abs(sample.latitude) <= 90.0 && std::abs(sample.longitude) <= 180.0;
}

QString pointText(const SensorSample& sample) {
    return QStringLiteral("[%1,%2]").arg(sample.latitude, 0, 'f', 5).arg(sample.longitude, 0, 'f', 5);
}

} // namespace

QString mapPage(double latitude, double longitude) {
    return QString::asprintf(kPage, latitude, longitude, kLevel);
}

QString goScript(double latitude, double longitude) {
    return QStringLiteral("go(%1,%2)").arg(latitude, 0, 'f', 5).arg(longitude, 0, 'f', 5);
}

QString trackScript(const SensorTrack& track) {
    QStringList stretches;
    QStringList points;
    const auto endStretch = [&] {
        if (!points.isEmpty())
            stretches.append(QLatin1Char('[') + points.join(QLatin1Char(',')) + QLatin1Char(']'));
        points.clear();
    };
    for (const SensorSample& sample : track) {
        if (!sample.hasPosition() || !isOnEarth(sample)) {
            endStretch();
            continue;
        }
        const QString point = pointText(sample);
        if (points.isEmpty() || points.last() != point)
            points.append(point);
    }
    endStretch();
    return QStringLiteral("setTrack([%1])").arg(stretches.join(QLatin1Char(',')));
}

QString tilesScript(const QString& address) {
    const QByteArray quoted = QJsonDocument(QJsonArray{address}).toJson(QJsonDocument::Compact);
    return QStringLiteral("setTiles(%1[0],{bytes:%2,sides:[%3,%4]})")
        .arg(QString::fromUtf8(quoted))
        .arg(limits::kTileBytes)
        .arg(limits::kTileSides[0])
        .arg(limits::kTileSides[1]);
}

} // namespace ql240
