// Opens reports of the program in a browser; a page that complains, or asks for anything, fails its test.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { env } from 'node:process';
import { pathToFileURL } from 'node:url';
import { inflateSync } from 'node:zlib';

const { chromium } = createRequire(new URL('../../chart_page/', import.meta.url))('playwright-core');

export const program = env.ROOFLINE_PROGRAM;
export const example = (/** @type {string} */ name) => join(env.ROOFLINE_EXAMPLES, name);
export const folder = mkdtempSync(join(tmpdir(), 'chart_page-'));

const browser = await chromium.launch({
    executablePath: env.ROOFLINE_BROWSER,
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
        '--disable-background-networking',
        '--disable-component-update', '--disable-sync'],
});

export async function closeBrowser() {
    await browser.close();
    rmSync(folder, { recursive: true, force: true });
}

/**
 * A page of its own for a test; mayAsk tells of a request that is right, mayFail of a status that is
 * expected.
 */
export async function openPage(t, address, mayAsk = (asked) => asked.split('#')[0] === address,
    mayFail = () => false) {
    const context = await browser.newContext({ viewport: { width: 1400, height: 900 },
        reducedMotion: 'reduce' });
    const page = await context.newPage();
    const complaints = [];
    page.on('console', (message) => {
        const [, status] = /status of (\d+)/.exec(message.text()) ?? [];
        if (!mayFail(Number(status))) complaints.push(message.text());
    });
    page.on('pageerror', (error) => complaints.push(String(error)));
    page.on('dialog', (dialog) => complaints.push(dialog.message()) && dialog.dismiss());
    page.on('request', (request) =>
        mayAsk(request.url()) || /^(blob|data):/.test(request.url()) || complaints.push(request.url()));
    t.after(async () => {
        await context.close();
        assert.deepEqual(complaints, []);
    });
    await page.goto(address);
    await page.waitForSelector('.chart .axis-number');
    return page;
}

let reports = 0;

/** The report of the program's arguments: its page, and the model that the page holds. */
export async function openReport(t, ...args) {
    const file = join(folder, `${++reports}.html`);
    execFileSync(program, ['report', ...args, '-o', file], { stdio: 'pipe' });
    const packed = /id="model">([^<]*)</.exec(readFileSync(file, 'utf8'))[1];
    const model = JSON.parse(inflateSync(Buffer.from(packed, 'base64')).toString());
    return { page: await openPage(t, pathToFileURL(file).href), model };
}

/** A chart of the model with its columns by key. */
export function chartOf(result, configuration) {
    const chart = result.charts[configuration];
    return { ...chart, column: (key) => result.columns[chart.loops[key]] ?? [] };
}

/** The rows of the points that are drawn at some configurations; points of a row on one place are one. */
export function placedRows(result, ...configurations) {
    const places = configurations.map((one) => chartOf(result, one)).flatMap((chart) => {
        const y = chart.column(chart.placed.replace('x', 'y'));
        return chart.column(chart.placed).flatMap((x, row) => (x === null ? [] : [`${row} ${x} ${y[row]}`]));
    });
    return [...new Set(places)].map((place) => parseInt(place, 10)).sort((a, b) => a - b);
}

/** Pixels of a decimal logarithm along both axes, by the numbers that are written there. */
export async function readAxes(page) {
    const numbers = await page.$$eval('.axis-number', (all) => all
        .filter((text) => !text.querySelector('tspan'))
        .map((text) => ({ log: Math.log10(text.textContent), x: +text.getAttribute('x'),
        y: +text.getAttribute('y') })));
    const scale = (axis, isAlong) => {
        const own = numbers.filter(isAlong).sort((a, b) => a.log - b.log);
        const [first, last] = [own[0], own.at(-1)];
        const decade = (last[axis] - first[axis]) / (last.log - first.log);
        return (log) => first[axis] + (log - first.log) * decade;
    };
    return { x: scale('x', ({ x }) => x >= 0), y: scale('y', ({ x }) => x < 0) };
}

/** Middles of the drawn points by row, in pixels of the plot. */
export const readPoints = (page) => page.$$eval('.points > path', (paths) => paths.map((path) => {
    const [, x, y] = /^M(-?[\d.]+),(-?[\d.]+)/.exec(path.getAttribute('d'));
    return { row: Number(path.dataset.row), x: Number(x), y: Number(y),
        faint: path.classList.contains('dimmed') };
}));

export const drawnRows = async (page) => (await readPoints(page)).map(({ row }) => row).sort((a, b) => a - b);

/** Names in the list, as far as they are in sight. */
export const listedNames = (page) =>
    page.$$eval('.grid-row .cell:first-child', (cells) => cells.map((cell) => cell.textContent));
