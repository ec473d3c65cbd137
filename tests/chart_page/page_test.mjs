// What a reader does with the page of a report: looking, zooming, choosing, searching, saving, comparing.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, test } from 'node:test';
import {
    chartOf, closeBrowser, drawnRows, example, folder, listedNames, openReport, placedRows, readAxes,
    readPoints,
} from './browser.mjs';
import { shortName } from '../../chart_page/src/short_name.js';
import { readHash, writeHash } from '../../chart_page/src/store.js';

const LEVELS = example('four_levels/result.json');
const NEAR = 0.75;  // pixels: ticks are read to tenths

after(closeBrowser);

async function press(page, ...captions) {
    for (const caption of captions)
        await page.locator('.segments button', { hasText: new RegExp(`^${caption}$`) }).click();
}

async function saved(page, kind) {
    await page.locator('.menu summary', { hasText: 'Save as' }).click();
    const [download] = await Promise.all([page.waitForEvent('download'), page.click(`#export-${kind}`)]);
    return readFileSync(await download.path());
}

/** A copy of an example that was changed; machine: of a result. */
function changed(name, change, machine = example('two_compilers/machine.json')) {
    const content = JSON.parse(readFileSync(example(name), 'utf8'));
    change(content);
    const file = join(folder, name.replaceAll('/', '-'));
    writeFileSync(file, JSON.stringify(machine ? { ...content, machine } : content));
    return file;
}

test('every point and roof of the model is drawn, where its numbers say', async (t) => {
    const { page, model: { results: [result] } } = await openReport(t, LEVELS);
    const chart = chartOf(result, result.configuration);
    assert.deepEqual(await drawnRows(page), placedRows(result, result.configuration));

    const stateOf = ({ name }) => chart.selectedRoofs[name.toLowerCase().replaceAll(' ', '')];
    const roofs = result.roofs.f.asRun;
    assert.equal(await page.locator('.roof').count(), roofs.filter((roof) => !stateOf(roof).hidden).length);
    assert.equal(await page.locator('.roof.strong').count(), roofs
        .filter((roof) => stateOf(roof).selected).length);

    const axes = await readAxes(page);
    for (const { row, x, y } of (await readPoints(page)).slice(0, 3)) {
        assert.ok(Math.abs(axes.x(chart.column('x')[row]) - x) < NEAR, `x of row ${row}`);
        assert.ok(Math.abs(axes.y(chart.column('y')[row]) - y) < NEAR, `y of row ${row}`);
    }
});

test('zoom keeps the point under the cursor and its numbers true', async (t) => {
    const { page, model: { results: [result] } } = await openReport(t, LEVELS);
    const x = chartOf(result, result.configuration).column('x');
    const [held, other] = await readPoints(page);
    const find = async ({ row }) => (await readPoints(page)).find((point) => point.row === row);
    const distance = (a, b) => Math.hypot(a.x - b.x, a.y - b.y);
    const box = await page.locator(`.points > path[data-row="${held.row}"]`).boundingBox();
    await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
    await page.mouse.wheel(0, -400);
    await page.waitForFunction(([row, before]) => !document.querySelector(`.points > path[data-row="${row}"]`)
        .getAttribute('d').startsWith(`M${before},`), [other.row, other.x]);
    const moved = await find(other);
    assert.ok(distance(await find(held), held) < 2);
    assert.ok(distance(moved, other) > 20);
    assert.ok(Math.abs((await readAxes(page)).x(x[other.row]) - moved.x) < NEAR);
    await page.keyboard.press('0');
    await page.waitForFunction(([row, before]) => document.querySelector(`.points > path[data-row="${row}"]`)
        .getAttribute('d').startsWith(`M${before},`), [other.row, other.x]);
});

test('a choice of options shows the union of its charts, and the address keeps it', async (t) => {
    const { page, model: { results: [result] } } = await openReport(t, LEVELS);
    await press(page, 'DRAM', 'Integer', 'Loads');
    const wanted = placedRows(result, 'i-1-L1-load', 'i-1-DRAM-load');
    assert.ok(wanted.length > 0);
    assert.deepEqual(await drawnRows(page), wanted);
    await page.reload();
    await page.waitForSelector('.points > path');
    assert.deepEqual(await drawnRows(page), wanted);
    await press(page, 'Level', 'L1');
    assert.deepEqual(await drawnRows(page), placedRows(result, 'i-1-DRAM-load'));
    assert.match(page.url(), /tokens=i-1-DRAM-load.*colourBy=level/);
});

test('the keyboard alone searches, pins a row, reads its details and lets it go', async (t) => {
    const { page, model: { results: [{ rows, details }] } } = await openReport(t, LEVELS);
    await page.keyboard.press('/');
    await page.keyboard.type('STENCIL');
    await page.waitForFunction(() => document.querySelectorAll('.grid-row').length === 2);
    assert.deepEqual(await listedNames(page), ['stencil_2d', 'stencil_3d']);
    for (const { row, faint } of await readPoints(page)) assert.equal(faint,
        !rows.name[row].startsWith('stencil'));

    for (const key of ['Enter', 'ArrowDown', 'Enter']) await page.keyboard.press(key);
    await page.waitForFunction(() => document.querySelector('.details h2')?.textContent === 'stencil_3d');
    const { messages } = details[rows.id[rows.name.indexOf('stencil_3d')]].bottleneck;
    assert.ok(messages.length > 0);
    for (const message of messages) assert.equal(await page.locator('.message',
        { hasText: message }).count(), 1);
    await page.keyboard.press('Escape');
    await page.waitForFunction(() => !document.querySelector('.details h2'));
    await page.keyboard.press('?');
    assert.ok(await page.locator('dialog').isVisible());
});

test('the list sorts by a column with missing values last, and the filter by time leaves rows out',
    async (t) => {
    const { page, model: { results: [{ rows }] } } = await openReport(t, LEVELS);
    for (const sign of [-1, 1]) {
        await page.click('[data-column=performance]');
        const texts = await page.$$eval('.grid-row .cell:nth-child(7)', (cells) => cells
            .map((cell) => cell.textContent));
        const known = texts.filter((text) => text !== 'N/A').map(Number);
        assert.deepEqual(known, [...known].sort((a, b) => sign * (a - b)));
        assert.ok(known.length < texts.length);
        assert.ok(texts.slice(known.length).every((text) => text === 'N/A'));
    }
    await page.fill('#least', '10');
    assert.deepEqual((await listedNames(page)).sort(), rows.name.filter((_, row) => rows.share[row] >= 0.1)
        .sort());
});

test('the saved pictures and table hold what is seen', async (t) => {
    const { page, model: { results: [result] } } = await openReport(t, LEVELS);
    const svg = (await saved(page, 'svg')).toString();
    const errors = await page.evaluate((text) => new DOMParser().parseFromString(text, 'image/svg+xml')
        .querySelectorAll('parsererror').length, svg);
    assert.equal(errors, 0);
    const shapes = await page.$$eval('.points > path', (paths) => paths
        .map((path) => path.getAttribute('d')));
    for (const shape of shapes) assert.ok(svg.includes(shape));
    for (const { name } of result.roofs.f.asRun.filter(({ isMem }) => isMem)) assert.ok(svg.includes(name));
    assert.equal((await saved(page, 'png')).subarray(1, 4).toString(), 'PNG');

    assert.ok(svg.includes(result.machine) && svg.includes(`roofs: ${result.place}`));
    const csv = (await saved(page, 'csv')).toString().trimEnd();
    assert.ok(csv.startsWith('\ufeff'));
    const [head, ...lines] = csv.split('\r\n').map((line) => line.split(','));
    assert.equal(lines.length, result.rows.id.length);
    for (const line of lines)
        for (const [caption, member] of [['Share [fraction]', 'share'], ['Speed-up', 'speedUp']])
            assert.equal(Number(line[head.indexOf(caption)]),
                result.rows[member][result.rows.name.indexOf(line[0])] ?? 0);
    const gains = lines.map((line) => ['Time [s]', 'Speed-up', 'To gain [s]']
        .map((caption) => Number(line[head.indexOf(caption)])));
    assert.ok(gains.some(([, , gain]) => gain > 0));
    for (const [time, speedUp, gain] of gains)
        assert.ok(Math.abs((speedUp > 1 ? time * (1 - 1 / speedUp) : 0) - gain) < 1e-4 * time);
});

test('names stay text, whatever they hold', async (t) => {
    const names = ['<img src=x onerror=alert(1)>', '</script><script>alert(2)</script>', '<b>bold</b>',
        '=1+1', '{{SCRIPT}}'];
    const { page } = await openReport(t, changed('four_levels/result.json', ({ program, rows }) => {
        program.name = names[1];
        names.forEach((name, at) => (rows[at].cells.FunctionName = name));
    }));
    const listed = await listedNames(page);
    for (const name of names) {
        assert.ok(listed.includes(name), name);
        await page.locator('.grid-row').nth(listed.indexOf(name)).click();
        await page.waitForFunction((wanted) => document.querySelector('.details h2')?.textContent === wanted,
            name);
    }
    assert.equal(await page.locator('#app :is(img, b, script)').count(), 0);
    assert.equal(await page.locator('h1').textContent(), names[1]);
    assert.match((await saved(page, 'csv')).toString(), /^'=1\+1,/m);
});

test('a comparison draws its pairs as arrows and lists changes and rows of one side', async (t) => {
    const without = (name, wanted) => changed(`two_compilers/${name}.json`, (result) => {
        result.rows = result.rows.filter(({ cells }) => cells.FunctionName !== wanted);
    });
    const { page, model } = await openReport(t, without('gcc', 'Stream_DOT'), '--compare',
        without('clang', 'Apps_FIR'));
    const { comparison: { pairs, baseOnly, newOnly }, results: [base, next] } = model;
    const tabs = page.locator('[role=tab]');
    assert.deepEqual(await tabs.allTextContents(),
        [`Changes (${pairs.length})`, `Only in base (${baseOnly.length})`,
            `Only in new (${newOnly.length})`]);
    await tabs.nth(1).click();
    assert.deepEqual(await listedNames(page), baseOnly.map((row) => base.rows.name[row]));
    await tabs.nth(2).click();
    assert.deepEqual(await listedNames(page), newOnly.map((row) => next.rows.name[row]));
    await tabs.nth(0).click();

    assert.equal((await readPoints(page)).length,
        placedRows(base, base.configuration).length + placedRows(next, next.configuration).length);
    for (const change of ['faster', 'slower'])
        assert.ok((await page.locator(`.under .arrow.${change}`).getAttribute('d')).length > 0);
    const size = ({ timeBase, timeNew }) => Math.abs(timeNew - timeBase);
    const greatest = pairs.reduce((a, b) => (size(a) >= size(b) ? a : b));
    assert.equal((await listedNames(page))[0], base.rows.name[greatest.base]);
    await page.locator('.grid-row').first().click();
    assert.match(await page.locator('.details p.change').textContent(), new RegExp(`${greatest.change}$`));
});

test('a verdict of more than the point says so in card, details and table', async (t) => {
    const { page, model: { results: [{ rows, dictionary }] } } = await openReport(t,
        example('quick/result.json'));
    const row = rows.name.indexOf('[loop in solve at solve.cpp:40]');
    const doubt = dictionary[rows.doubt[row]];
    const { x, y, width, height } = await page.locator(`.points > path[data-row="${row}"]`).boundingBox();
    await page.mouse.move(x + width / 2, y + height / 2);
    assert.match(await page.locator('.chart-card').textContent(),
        new RegExp(`${dictionary[rows.limit[row]]}: [\\d.]+ % reached \\(.*${doubt}\\)`));
    await page.locator(`#row-${row}`).click();
    assert.match(await page.locator('.details .warning').textContent(), /the row with all that it calls\.$/);
    await page.fill('#search', rows.name[row]);  // counts at once
    const csv = (await saved(page, 'csv')).toString().trimEnd().split('\r\n');
    assert.deepEqual([csv.length, csv[1].split(',')[csv[0].split(',').indexOf('Remark')]], [2, doubt]);
});

test('threads and packages of the roofs change one by one, from those of the run on', async (t) => {
    const machine = changed('quick/machine.json', (content) => (content.packages = 2), '');
    const { page } = await openReport(t, changed('quick/result.json', () => {}, machine));
    const choices = () => page.$$eval('.controls select', (all) => all
        .map(({ selectedOptions: [option] }) => option.textContent));
    assert.deepEqual(await choices(), ['as run (8)', 'as run']);
    for (const [field, value, expected] of [['packages', '2', ['8', '2']], ['threads', '4', ['4', '2']],
        ['packages', '1', ['4', '1']], ['threads', '', ['as run (8)', 'as run']],
        ['threads', '2', ['2', '2']]]) {
        await page.selectOption(`[data-focus=${field}]`, value);
        assert.deepEqual(await choices(), expected);
    }
});

test('a few points far from all others are told at the edge, until they are asked for', async (t) => {
    const { page } = await openReport(t, example('two_compilers/gcc.json'));
    const more = page.locator('.chart-more:visible');
    const width = Number(await page.getAttribute('.plot-frame', 'width'));
    const beyond = async () => (await readPoints(page)).filter(({ x }) => x > width).length;
    assert.deepEqual(await more.allTextContents(), ['3 more \u2192']);
    assert.equal(await beyond(), 3);
    await more.click();
    await more.waitFor({ state: 'hidden' });
    assert.equal(await beyond(), 0);
    await page.waitForURL(/zoom=/);
    const shown = await readPoints(page);
    await page.reload();
    await page.waitForSelector('.points > path');
    assert.deepEqual(await readPoints(page), shown);
    await page.dblclick('.catch', { position: { x: 30, y: 10 } });
    await more.waitFor();
    await page.fill('#search', 'no such row');
    await more.waitFor({ state: 'hidden' });
});

test('the legend leaves kinds of limits out, and the address keeps that with the zoom', async (t) => {
    const { page, model: { results: [{ rows }] } } = await openReport(t, example('two_compilers/gcc.json'));
    await page.locator('[data-kind=compute]').press('Enter');
    await page.waitForSelector('[data-kind=compute][aria-pressed=false]:focus');
    for (const { row, faint } of await readPoints(page))
        assert.equal(faint, rows.limitKind[row] === 'compute');
    const count = rows.limitKind.filter((kind) => kind !== 'compute').length;
    assert.equal(await page.locator('.count').textContent(), `rows: ${count} of ${rows.id.length}`);
    await page.click('.chart-buttons button');
    await page.waitForURL(/without=compute&zoom=/);
    const shown = await readPoints(page);
    await page.reload();
    await page.waitForSelector('.points > path');
    assert.deepEqual(await readPoints(page), shown);
});

test('a row that takes all of the time is no mark of wrong data', async (t) => {
    const { page } = await openReport(t, changed('quick/result.json', ({ program }) => {
        program.elapsedTime = 5.64;  // of main with all that it calls
    }, example('quick/machine.json')));
    await press(page, 'With call stacks');
    await page.locator('.grid-row', { hasText: /^main/ }).locator('.cell', { hasText: /^100 %$/ }).waitFor();
});

test('a level that the new result lacks leaves it without points, and the lane says why', async (t) => {
    const { page, model: { results: [base] } } = await openReport(t, LEVELS, '--compare',
        changed('four_levels/result.json', (result) => {
            result.levels = ['L1', 'L2', 'DRAM'];
            for (const { cells } of result.rows)
                for (const name of Object.keys(cells)) if (name.includes('L3')) delete cells[name];
        }));
    await press(page, 'L3');
    await page.locator('.grid-row').first().click();
    await page.locator('.details .figures th', { hasText: /^L1: OP\/byte$/ }).waitFor();
    await press(page, 'L1');
    const keys = await page.$$eval('.points > path', (paths) => paths.map((path) => path.dataset.key));
    assert.equal(keys.length, placedRows(base, 'f-1-L3-all').length);
    assert.ok(keys.every((key) => key.startsWith('0:')));
    await page.locator('.lane-caption', { hasText: /^\d+ memory level not measured$/ }).waitFor();
});

test('times from a model are said to be so, measured ones are not', async (t) => {
    for (const [name, isProjected] of [['projected', true], ['measured', false]]) {
        const { page } = await openReport(t, example(`offload_v100/${name}.json`));
        const head = await page.locator('header.top').textContent();
        assert.equal(head.includes('projected by a model'), isProjected, head);
    }
});

test('any state comes back from the address', () => {
    const state = { ...readHash('tokens=f&setUp=&machine=0&search=&least=0&colourBy=level&sort=&descending=1'
        + '&pinned=&list=&zoom=1,2,3'), roofs: { 'a:b, %c': 'off', '\u00fc': 'strong' }, without: ['none'] };
    const start = Object.fromEntries(Object.keys(state)
        .map((key) => [key, Array.isArray(state[key]) ? [] : '']));
    assert.deepEqual({ ...state, ...readHash(`#${writeHash(state, { ...start, roofs: {} })}`) }, state);
});

test('arrow keys choose among options, and sorting by key keeps the focus', async (t) => {
    const { page } = await openReport(t, LEVELS);
    const focused = () => page.evaluate(() => document.activeElement.textContent);
    await page.locator('[role=radio]', { hasText: /^Float$/ }).focus();
    await page.keyboard.press('ArrowRight');
    await page.locator('[role=radio][aria-checked=true]', { hasText: /^Integer$/ }).waitFor();
    assert.equal(await focused(), 'Integer');
    await page.locator('[data-column=time]').press('Enter');
    await page.waitForSelector('[aria-sort=descending] [data-column=time]');
    assert.equal(await focused(), 'Time [s]');
});

test('a short name drops what stands around a C++ name, and leaves other names alone', () => {
    for (const [name, short] of [['void scale<a<b>, 8u>(a<b>, int) const', 'scale<a<b>, 8u>'],
        ['[loop in void f<int>(int) at a.cpp:3]', '[loop in f<int> at a.cpp:3]'],
        ['bool operator<(A const&, B const&)', 'operator<'], ['loop (x[0])', 'loop (x[0])'],
        ['std::v<int>& (anonymous namespace)::f(int (*)(int))', '(anonymous namespace)::f']])
        assert.equal(shortName(name), short);
});
