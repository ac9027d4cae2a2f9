// The offline map: land, borders and names from the program's own data, drawn tile by tile, with a graticule on top.
// Coordinates are fractions of the Mercator square: x from 0 at 180° W to 1 at 180° E, y from 0 in the north.
"use strict";

const BaseMap = (function () {
    const colours = {
        land: "#2e3230", coast: "#66716e", border: "#59605d", graticule: "rgba(220, 220, 220, 0.10)",
        country: "#a3aaa7", city: "#dcdcdc", dot: "#86e6d9", halo: "#15191c", degrees: "#a0a4a6"
    };
    const TILE = 256;
    let cities = [];
    const cityFont = "10px 'Open Sans', sans-serif", countryFont = "italic 10px 'Open Sans', sans-serif";
    const degreeFont = "9px 'Open Sans', sans-serif";

    function mercatorX(longitude) {
        return (longitude + 180) / 360;
    }

    function mercatorY(latitude) {
        const s = Math.sin(Math.max(-85.0511, Math.min(85.0511, latitude)) * Math.PI / 180);
        return 0.5 - Math.log((1 + s) / (1 - s)) / (4 * Math.PI);
    }

    // Points as x, y, x, y, … with their bounding box.
    function line(points) {
        const box = {left: Infinity, right: -Infinity, top: Infinity, bottom: -Infinity};
        for (let i = 0; i < points.length; i += 2) {
            box.left = Math.min(box.left, points[i]);
            box.right = Math.max(box.right, points[i]);
            box.top = Math.min(box.top, points[i + 1]);
            box.bottom = Math.max(box.bottom, points[i + 1]);
        }
        return {points, box};
    }

    function overlaps(a, b) {
        return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
    }

    // TopoJSON stores each shared piece of outline once, as integers, each point relative to the previous one.
    function decodeArc(arc, transform) {
        const points = new Float64Array(arc.length * 2);
        let x = 0, y = 0;
        arc.forEach(function (step, i) {
            x += step[0];
            y += step[1];
            points[2 * i] = mercatorX(x * transform.scale[0] + transform.translate[0]);
            points[2 * i + 1] = mercatorY(y * transform.scale[1] + transform.translate[1]);
        });
        return unrolled(points);
    }

    // Makes outlines that cross 180° continue past the square's edge instead of jumping to the other side.
    function unrolled(points) {
        for (let i = 2; i < points.length; i += 2)
            points[i] -= Math.round(points[i] - points[i - 2]);
        return points;
    }

    // The lines, plus copies shifted by a world width of those that extend past the square's sides.
    function withOverhang(lines) {
        const shifted = (one, by) => line(one.points.map((value, i) => i % 2 ? value : value + by));
        return lines.concat(lines.filter(one => one.box.right > 1).map(one => shifted(one, -1)),
                            lines.filter(one => one.box.left < 0).map(one => shifted(one, 1)));
    }

    // A ring is a list of arcs end to end; the negative number ~i is arc i backwards.
    function ringOf(numbers, arcs) {
        const points = [];
        for (const number of numbers) {
            const arc = arcs[number < 0 ? ~number : number].points;
            const count = arc.length / 2;
            for (let i = 0; i < count; ++i) {
                const at = 2 * (number < 0 ? count - 1 - i : i);
                points.push(arc[at], arc[at + 1]);
            }
        }
        unrolled(points);
        // A ring around the pole doesn't end where it began: close it along the square's lower edge.
        const last = points[points.length - 2];
        if (Math.abs(last - points[0]) > 0.5)
            points.push(last, 1, points[0], 1);
        return line(Float64Array.from(points));
    }

    function middleOf(box) {
        return {x: (box.left + box.right) / 2, y: (box.top + box.bottom) / 2, width: box.right - box.left};
    }

    function decodeCountries(topology) {
        const arcs = topology.arcs.map(arc => line(decodeArc(arc, topology.transform)));
        const uses = new Uint8Array(arcs.length);
        const countries = topology.objects.countries.geometries.map(function (geometry) {
            const polygons = geometry.type === "Polygon" ? [geometry.arcs] : geometry.arcs || [];
            for (const number of polygons.flat(2))
                ++uses[number < 0 ? ~number : number];
            const rings = polygons.flat().map(numbers => ringOf(numbers, arcs));
            const largest = rings.reduce((a, b) => !a || b.box.right - b.box.left > a.box.right - a.box.left ? b : a, null);
            return {name: geometry.properties.name, rings: withOverhang(rings), place: largest && middleOf(largest.box)};
        });
        return {
            countries,
            coasts: withOverhang(arcs.filter((arc, i) => uses[i] < 2)),
            borders: withOverhang(arcs.filter((arc, i) => uses[i] > 1))
        };
    }

    // Degrees of a position such as +3733 or -0712530: two or three digits of degrees, then minutes, then seconds.
    function degreesOf(sign, degrees, minutes, seconds) {
        return (sign === "-" ? -1 : 1) * (Number(degrees) + Number(minutes) / 60 + Number(seconds || 0) / 3600);
    }

    // The time zone table has one city per zone; a country's first one is usually its most populous.
    function decodeCities(text) {
        const row = /^(\w\w)\t([+-])(\d\d)(\d\d)(\d\d)?([+-])(\d{3})(\d\d)(\d\d)?\t(\S+)/gm;
        const seen = new Set(), first = [], others = [];
        for (const part of text.matchAll(row)) {
            const city = {
                name: part[10].split("/").pop().replaceAll("_", " "),
                x: mercatorX(degreesOf(part[6], part[7], part[8], part[9])),
                y: mercatorY(degreesOf(part[2], part[3], part[4], part[5]))
            };
            (seen.has(part[1]) ? others : first).push(city);
            seen.add(part[1]);
        }
        return first.concat(others);
    }

    // The names that fit at a zoom level: each is placed unless it overlaps one placed before.
    function placeNames(data, zoom, brush) {
        const size = TILE * 2 ** zoom, placed = [];
        function place(name) {
            if (placed.some(other => overlaps(other.box, name.box)))
                return;
            placed.push(name);
        }
        for (const city of data.cities) {
            const x = city.x * size, y = city.y * size;
            brush.font = cityFont;
            const width = brush.measureText(city.name).width;
            place({city: true, text: city.name, x, y, box: {left: x - 4, right: x + width + 8, top: y - 7, bottom: y + 7}});
        }
        for (const country of data.countries) {
            brush.font = countryFont;
            const width = brush.measureText(country.name).width;
            if (!country.place || country.place.width * size < width)
                continue;
            const x = country.place.x * size, y = country.place.y * size;
            place({text: country.name, x, y,
                   box: {left: x - width / 2 - 3, right: x + width / 2 + 3, top: y - 7, bottom: y + 7}});
        }
        return placed;
    }

    function trace(brush, points, size) {
        brush.moveTo(points[0] * size, points[1] * size);
        for (let i = 2; i < points.length; i += 2)
            brush.lineTo(points[i] * size, points[i + 1] * size);
    }

    function drawLines(brush, lines, view, size, colour) {
        brush.beginPath();
        for (const one of lines) {
            if (overlaps(one.box, view))
                trace(brush, one.points, size);
        }
        brush.strokeStyle = colour;
        brush.stroke();
    }

    function drawName(brush, name) {
        brush.font = name.city ? cityFont : countryFont;
        brush.textAlign = name.city ? "left" : "center";
        brush.strokeStyle = colours.halo;
        brush.fillStyle = name.city ? colours.city : colours.country;
        const x = Math.round(name.x) + (name.city ? 5 : 0), y = Math.round(name.y) + 3;
        brush.lineWidth = 3;
        brush.strokeText(name.text, x, y);
        brush.fillText(name.text, x, y);
        if (name.city) {
            brush.fillStyle = colours.dot;
            brush.fillRect(Math.round(name.x) - 1.5, Math.round(name.y) - 1.5, 3, 3);
        }
    }

    // Paints one tile; coords are Leaflet's, the brush's origin is the tile's corner.
    function paintTile(brush, data, coords, names) {
        const size = TILE * 2 ** coords.z;
        const left = coords.x * TILE, top = coords.y * TILE;
        const view = {left: left / size, right: (left + TILE) / size, top: top / size, bottom: (top + TILE) / size};
        brush.translate(-left, -top);
        brush.lineJoin = "round";
        brush.fillStyle = colours.land;
        for (const country of data.countries) {
            const rings = country.rings.filter(ring => overlaps(ring.box, view));
            brush.beginPath();
            for (const ring of rings)
                trace(brush, ring.points, size);
            brush.fill("evenodd");
        }
        brush.lineWidth = 1;
        brush.setLineDash([3, 2]);
        drawLines(brush, data.borders, view, size, colours.border);
        brush.setLineDash([]);
        drawLines(brush, data.coasts, view, size, colours.coast);
        const tile = {left, right: left + TILE, top, bottom: top + TILE};
        names.filter(name => overlaps(name.box, tile)).forEach(name => drawName(brush, name));
    }

    function makeCanvas(element, width, height) {
        const ratio = window.devicePixelRatio || 1;
        element.width = Math.round(width * ratio);
        element.height = Math.round(height * ratio);
        element.style.width = width + "px";
        element.style.height = height + "px";
        const brush = element.getContext("2d");
        brush.scale(ratio, ratio);
        return brush;
    }

    // Frees a tile's pixels as soon as it leaves the map: the garbage collector sees only a small object and waits.
    function freeTiles(layer) {
        layer.on("tileunload", function (event) {
            event.tile.width = event.tile.height = 0;
        });
    }

    const Layer = L.GridLayer.extend({
        initialize: function (data) {
            L.GridLayer.prototype.initialize.call(this, {keepBuffer: 1, updateInterval: 50});
            freeTiles(this);
            this._data = data;
            this._names = new Map();
        },
        createTile: function (coords) {
            const tile = document.createElement("canvas");
            const brush = makeCanvas(tile, TILE, TILE);
            if (!this._names.has(coords.z))
                this._names.set(coords.z, placeNames(this._data, coords.z, brush));
            paintTile(brush, this._data, coords, this._names.get(coords.z));
            return tile;
        }
    });

    function degreeText(value, letters) {
        return Math.abs(value) + "°" + (value === 0 ? "" : letters[value > 0 ? 0 : 1]);
    }

    // Lines of latitude and longitude with their degrees at the map's left and upper edges.
    const Graticule = L.Layer.extend({
        getEvents: function () {
            return {moveend: this._draw, zoomend: this._draw, resize: this._draw};
        },
        onAdd: function (map) {
            this._canvas = L.DomUtil.create("canvas", "graticule", map.getContainer());
            this._draw();
        },
        onRemove: function () {
            this._canvas.remove();
        },
        _draw: function () {
            const size = this._map.getSize(), bounds = this._map.getBounds();
            const brush = makeCanvas(this._canvas, size.x, size.y);
            const step = [90, 45, 30, 20, 10, 5, 2, 1][Math.max(0, Math.min(7, this._map.getZoom()))];
            brush.font = degreeFont;
            brush.strokeStyle = colours.graticule;
            brush.fillStyle = colours.degrees;
            for (let at = Math.ceil(bounds.getWest() / step) * step; at <= bounds.getEast(); at += step) {
                const x = Math.round(this._map.latLngToContainerPoint([0, at]).x) + 0.5;
                brush.strokeRect(x, -1, 0, size.y + 2);
                brush.fillText(degreeText(L.Util.wrapNum(at, [-180, 180], true), "EW"), x + 2, 10);
            }
            for (let at = Math.ceil(bounds.getSouth() / step) * step; at <= bounds.getNorth(); at += step) {
                const y = Math.round(this._map.latLngToContainerPoint([at, 0]).y) + 0.5;
                brush.strokeRect(-1, y, size.x + 2, 0);
                if (y < size.y - 24)    // leaves room for the scale bar
                    brush.fillText(degreeText(at, "NS"), 2, y - 2);
            }
        }
    });

    // The zoom that shows enough names around a place: closer where cities are dense.
    function zoomFor(place, map) {
        const size = map.getSize(), x = mercatorX(place.lng), y = mercatorY(place.lat);
        const names = cities.filter(city => Math.abs(city.x - x) * TILE * 32 < size.x / 2 &&
                                            Math.abs(city.y - y) * TILE * 32 < size.y / 2);
        return names.length > 1 ? 5 : 4;
    }

    // Fetches the data and passes a group of the two layers to `done`.
    function load(folder, done) {
        Promise.all([fetch(folder + "countries.json").then(answer => answer.json()),
                     fetch(folder + "cities.txt").then(answer => answer.text())])
            .then(function (parts) {
                const data = decodeCountries(parts[0]);
                data.cities = cities = decodeCities(parts[1]);
                done(L.layerGroup([new Layer(data), new Graticule()]));
            });
    }

    return {load, zoomFor, makeCanvas, freeTiles};
})();
