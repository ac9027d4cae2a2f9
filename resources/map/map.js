// The map in the page's element, with the car at its centre: street tiles while a tile server answers, otherwise the
// base map. The page calls KORVAMAP.initMap and MapMoveToAuto, the program calls setTiles and setTrack.
"use strict";

const KORVAMAP = (function () {
    const folder = "http://map.ql240.invalid/BlackBox/ajaxMap/newMap/";
    const levelToZoom = 7;          // level 9 shows a few streets, like zoom 16 of the usual tile scheme
    const streetLimits = [3, 19], baseLimits = [2, 8];
    const retryMs = 30000;          // between attempts to reach a tile server that doesn't answer
    const answerMs = 8000;          // the street map is given up when tiles take longer
    const failuresInARow = 4;
    const attribution = '© <a href="https://www.openstreetmap.org/copyright">OpenStreetMap</a> contributors';
    const tileBrightness = 0.82;
    const trackColour = "#2e8a80", carColour = "#86e6d9";
    const waySize = L.point(104, 80);
    const still = {animate: false};

    let map = null, base = null, car = null, trackLayer = null, way = null;
    let position = null, heading = 0, track = [], trackBounds = null, level = 9;
    let tiles = null, tileTemplate = "", tileLimits = null, onStreets = false;
    let probe = null, probeTimer = 0, refusals = 0, tileWatch = 0, failures = 0, waitingSince = 0;
    let streetZoom = level + levelToZoom, baseZoom = 0;    // 0: as BaseMap.zoomFor says

    // Updates its element only if the text or width has changed: a page layout costs more than moving the map.
    const Scale = L.Control.Scale.extend({
        _updateScale: function (element, text, ratio) {
            const shown = text + Math.round(ratio * this.options.maxWidth);
            if (element.shown !== shown)
                L.Control.Scale.prototype._updateScale.call(this, element, text, ratio);
            element.shown = shown;
        }
    });

    // The clip's track, drawn in tiles like the map below it, so that moving the map redraws nothing.
    const TrackLayer = L.GridLayer.extend({
        options: {pane: "overlayPane", keepBuffer: 1, updateInterval: 50, minZoom: 0, maxZoom: 19},
        createTile: function (coords) {
            const lines = track.map(segment => L.LineUtil.simplify(
                segment.map(point => map.project(point, coords.z)), 1));
            return paintTrackTile(lines, coords.scaleBy(this.getTileSize()), this.getTileSize());
        }
    });

    // Street tiles, dimmed once when they arrive: at full brightness they would outshine the dark windows.
    const StreetLayer = L.TileLayer.extend({
        createTile: function (coords, done) {
            const tile = document.createElement("canvas");
            tile.stop = new AbortController();
            TilePictures.take(this.getTileUrl(coords), tileLimits, tile.stop).then(function (picture) {
                tile.width = picture.width;
                tile.height = picture.height;
                const brush = tile.getContext("2d", {alpha: false});
                brush.globalAlpha = tileBrightness;
                brush.drawImage(picture, 0, 0);
                picture.close();
                done(null, tile);
            }, () => done(new Error("no tile"), tile));
            return tile;
        }
    });

    function paintTrackTile(lines, corner, size) {
        const view = L.bounds(corner.subtract([3, 3]), corner.add(size).add([3, 3]));
        const crosses = line => line.some((point, i) => i > 0 && view.intersects(L.bounds(line[i - 1], point)));
        const inside = lines.filter(crosses);
        if (inside.length === 0)
            return document.createElement("div");
        const tile = document.createElement("canvas");
        const brush = BaseMap.makeCanvas(tile, size.x, size.y);
        brush.translate(-corner.x, -corner.y);
        drawTrack(brush, inside, 4);
        return tile;
    }

    function drawTrack(brush, lines, width) {
        brush.lineJoin = brush.lineCap = "round";
        brush.strokeStyle = trackColour;
        brush.lineWidth = width;
        for (const line of lines) {
            brush.beginPath();
            line.forEach(point => brush.lineTo(point.x, point.y));
            brush.stroke();
        }
    }

    function carIcon() {
        return L.divIcon({
            className: "car", iconSize: [24, 24], iconAnchor: [12, 12],
            html: '<svg width="24" height="24" viewBox="0 0 24 24"><path d="M12 2 19 20 12 16.5 5 20Z"' +
                  ' fill="' + carColour + '" stroke="#090909" stroke-width="2" stroke-linejoin="round"' +
                  ' paint-order="stroke"/></svg>'
        });
    }

    function loadScript(name, loaded) {
        const script = document.createElement("script");
        script.src = folder + name;
        script.onload = loaded;
        document.head.appendChild(script);
    }

    function loadStyle(name) {
        const link = document.createElement("link");
        link.rel = "stylesheet";
        link.href = folder + name;
        document.head.appendChild(link);
    }

    // May be called repeatedly; only the first call creates the map.
    function initMap(id, x, y, zoom, callback) {
        if (!map)
            makeMap(document.getElementById(id));
        if (typeof callback === "function")
            callback();
    }

    function makeMap(element) {
        loadStyle("leaflet.css");
        loadStyle("map.css");
        loadScript("tile_pictures.js", tryStreets);
        map = L.map(element, {
            zoomControl: false, keyboard: false, boxZoom: false, inertia: false, zoomAnimation: false,
            fadeAnimation: false, markerZoomAnimation: false, worldCopyJump: true,
            scrollWheelZoom: "center", doubleClickZoom: "center", touchZoom: "center"
        });
        map.attributionControl.setPrefix(false);
        new Scale({imperial: false, maxWidth: 80}).addTo(map);
        trackLayer = new TrackLayer();
        BaseMap.freeTiles(trackLayer);
        car = L.marker([0, 0], {icon: carIcon(), interactive: false, keyboard: false});
        BaseMap.load(folder, function (layer) {
            base = layer;
            if (position)
                showLayers();
        });
    }

    // The zoom that the user has chosen by wheel or double click.
    function rememberZoom() {
        if (onStreets)
            streetZoom = map.getZoom();
        else
            baseZoom = map.getZoom();
    }

    // Shows the layers of the current state at the car's position.
    function showLayers() {
        const limits = onStreets ? streetLimits : baseLimits;
        map.off("zoomend", rememberZoom);
        map.setMinZoom(0).setMaxZoom(limits[1]);
        map.setView(position, onStreets ? streetZoom : baseZoom || BaseMap.zoomFor(position, map), still);
        map.setMinZoom(limits[0]).on("zoomend", rememberZoom);
        car.setLatLng(position);
        for (const layer of [base, tiles, trackLayer, car])
            if (layer)
                layer.remove();
        if (base && !onStreets)
            base.addTo(map);
        if (tiles && onStreets)
            tiles.addTo(map);
        trackLayer.addTo(map);
        car.addTo(map);
        map.attributionControl.removeAttribution(attribution).removeAttribution("Natural Earth");
        map.attributionControl.addAttribution(onStreets ? attribution : "Natural Earth");
        turnArrow();
        drawWay();
    }

    function bearing(from, to) {
        const x = (to.lng - from.lng) * Math.cos(to.lat * Math.PI / 180), y = to.lat - from.lat;
        return Math.atan2(x, y) * 180 / Math.PI;
    }

    // The direction of the track at a place on it, so that a step back doesn't turn the car. Measured to a point far
    // enough away that positions rounded to a metre don't matter. Null off the track.
    function wayHeading(place) {
        const away = point => place.distanceTo(point) >= 8;
        for (const segment of track) {
            const at = segment.findIndex(point => point[0] === place.lat && point[1] === place.lng);
            const next = at >= 0 && segment.slice(at).find(away);
            const last = at >= 0 && segment.slice(0, at).reverse().find(away);
            if (next)
                return bearing(place, L.latLng(next));
            if (last)
                return bearing(L.latLng(last), place);
        }
        return null;
    }

    // Off the track, the heading follows movements of at least two metres, so that noise doesn't turn a standing car.
    function turnTo(place) {
        const along = wayHeading(place);
        if (along === null && car.from && car.from.distanceTo(place) < 2)
            return;
        if (along !== null)
            heading = along;
        else if (car.from && car.from.distanceTo(place) < 500)
            heading = bearing(car.from, place);
        car.from = place;
    }

    // Damaged or malicious clips contain other positions, for which Leaflet would request tiles without end.
    function isOnEarth(point) {
        return Math.abs(point[0]) <= 90 && Math.abs(point[1]) <= 180;
    }

    function moveTo(latitude, longitude, newLevel) {
        const point = [parseFloat(latitude), parseFloat(longitude)];
        if (!map || !isOnEarth(point))
            return;
        const place = L.latLng(point);
        if (newLevel && Number(newLevel) !== level) {
            level = Number(newLevel);
            streetZoom = level + levelToZoom;
        }
        turnTo(place);
        const first = !position;
        position = place;
        if (first || !map.getBounds().contains(place))
            showLayers();
        else
            follow();
        turnArrow();
        drawWay();
    }

    function turnArrow() {
        const arrow = car.getElement() && car.getElement().firstChild;
        const turn = "rotate(" + heading.toFixed(0) + "deg)";
        if (arrow && arrow.style.transform !== turn)
            arrow.style.transform = turn;
    }

    // Centres the car, unless it is less than a pixel off centre or the user is dragging the map. Every move repaints
    // the page, which is the main cost of following the car.
    function follow() {
        const offset = map.latLngToContainerPoint(position).subtract(map.getSize().divideBy(2));
        if (map.dragging.moving() || Math.max(Math.abs(offset.x), Math.abs(offset.y)) < 1)
            return;
        car.setLatLng(position);
        map.setView(position, map.getZoom(), still);
    }

    // `segments`: lists of [latitude, longitude], one list for each stretch with a fix.
    function setTrack(segments) {
        track = segments.map(segment => segment.filter(isOnEarth));
        const points = track.flat();
        trackBounds = points.length < 2 ? null : L.latLngBounds(points);
        if (!map)
            return;
        trackLayer.redraw();
        drawWay();
        collect();
    }

    // Collects the garbage left from the last clip's track, which takes a few milliseconds.
    function collect() {
        if (typeof gc === "function")
            gc();
    }

    // With the base map, whose scale is too small to show driving: an inset with the whole track and the car on it.
    function drawWay() {
        if (onStreets || !position || !trackBounds) {
            if (way)
                way.remove();
            way = null;
            return;
        }
        if (!way)
            way = L.DomUtil.create("canvas", "way", map.getContainer());
        const project = wayProjection(trackBounds);
        const car = project([position.lat, position.lng]);
        const shown = [car.multiplyBy(2).round(), Math.round(heading / 5)].join();
        if (way.shown !== shown || way.track !== track)
            paintWay(BaseMap.makeCanvas(way, waySize.x, waySize.y), project, car);
        way.shown = shown;
        way.track = track;
    }

    // Projects [latitude, longitude] to the inset's pixels; the track fills the inset.
    function wayProjection(bounds) {
        const middle = bounds.getCenter(), narrow = Math.cos(middle.lat * Math.PI / 180), margin = 11;
        const width = Math.max(1e-4, (bounds.getEast() - bounds.getWest()) * narrow);
        const height = Math.max(1e-4, bounds.getNorth() - bounds.getSouth());
        const scale = Math.min((waySize.x - 2 * margin) / width, (waySize.y - 2 * margin) / height);
        return point => L.point(waySize.x / 2 + (point[1] - middle.lng) * narrow * scale,
                                waySize.y / 2 - (point[0] - middle.lat) * scale);
    }

    function paintWay(brush, project, car) {
        drawTrack(brush, track.map(segment => segment.map(project)), 2);
        brush.translate(car.x, car.y);
        brush.rotate(heading * Math.PI / 180);
        brush.fillStyle = carColour;
        brush.strokeStyle = "#090909";
        const arrow = new Path2D("M0-6 4.5 5 0 3-4.5 5Z");
        brush.stroke(arrow);
        brush.fill(arrow);
    }

    // Switches to street tiles only after a single tile has arrived, so an unreachable server costs little and hides
    // nothing. `limits`: the most bytes of a tile, and its allowed side lengths in pixels.
    function setTiles(template, limits) {
        tileTemplate = template;
        tileLimits = limits;
        refusals = 0;
        endProbe();
        setStreets(false);
        if (tiles)
            tiles.remove();
        tiles = null;
        if (!template)
            return;
        tiles = new StreetLayer(template, {keepBuffer: 1, minZoom: streetLimits[0], maxZoom: streetLimits[1],
                                           updateInterval: 100});
        BaseMap.freeTiles(tiles);
        tiles.on("tileunload", event => event.tile.stop.abort());
        tiles.on("loading", () => { waitingSince = Date.now(); });
        tiles.on("tileload", () => { failures = 0; waitingSince = Date.now(); });
        tiles.on("load", () => { waitingSince = 0; });
        tiles.on("tileerror", function () {
            if (++failures >= failuresInARow)
                giveUp();
        });
        tryStreets();
    }

    function setStreets(on) {
        if (onStreets === on)
            return;
        onStreets = on;
        failures = waitingSince = 0;
        clearInterval(tileWatch);
        if (on)
            tileWatch = setInterval(watchTiles, 2000);
        if (position)
            showLayers();
    }

    function giveUp() {
        setStreets(false);
        retryLater();
    }

    function endProbe() {
        clearTimeout(probeTimer);
        if (probe)
            probe.abort();
        probe = null;
    }

    function retryLater() {
        endProbe();
        probeTimer = setTimeout(tryStreets, retryMs);
    }

    function tileAddress() {
        const zoom = streetLimits[1] - 3, tile = map.project(position, zoom).divideBy(256).floor();
        return L.Util.template(tileTemplate,
                               {z: zoom, x: tile.x, y: tile.y, "-y": 2 ** zoom - 1 - tile.y, s: "a", r: ""});
    }

    function tryStreets() {
        endProbe();
        if (!tileTemplate || !position || typeof TilePictures === "undefined")
            return;
        const asked = probe = new AbortController();
        TilePictures.take(tileAddress(), tileLimits, asked).then(function (picture) {
            picture.close();
            if (probe === asked)
                setStreets(true);
        }, function () {
            if (probe === asked)
                refuse();
        });
    }

    function refuse() {
        ++refusals;
        retryLater();
    }

    // For a server that accepts requests but doesn't answer: returns to the base map before the old tiles leave the
    // view.
    function watchTiles() {
        if (waitingSince && Date.now() - waitingSince > answerMs)
            giveUp();
    }

    return {initMap, moveTo, setTrack, setTiles, get map() { return map; }, get onStreets() { return onStreets; },
            get refusals() { return refusals; }};
})();

const MapMoveToAuto = KORVAMAP.moveTo, setTrack = KORVAMAP.setTrack, setTiles = KORVAMAP.setTiles;
