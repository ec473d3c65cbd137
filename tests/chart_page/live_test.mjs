// The page while the program serves it: what it asks for, roofs of the reader's own, a result that changes.
import assert from 'node:assert/strict';
import { execFileSync, spawn } from 'node:child_process';
import { once } from 'node:events';
import { copyFileSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, test } from 'node:test';
import {
    closeBrowser, drawnRows, example, folder, listedNames, openPage, placedRows, program,
} from './browser.mjs';

after(closeBrowser);

/** A copy of an example and of its machine, whose file keeps the reader's own roofs. */
function copied(name) {
    const result = JSON.parse(readFileSync(example('four_levels/result.json'), 'utf8'));
    const file = join(folder, `${name}.json`);
    result.machine = join(folder, `${name}-machine.json`);
    copyFileSync(example('two_compilers/machine.json'), result.machine);
    const write = () => writeFileSync(file, JSON.stringify(result));
    write();
    return { result, file, write };
}

/** The address at which the program serves a result, once it says so. */
async function serve(file) {
    const server = spawn(program, ['serve', file, '--port', '0'], { stdio: ['ignore', 'pipe', 'pipe'] });
    process.on('exit', () => server.kill());
    let said = '';
    for (const stream of [server.stdout, server.stderr]) stream.on('data', (text) => (said += text));
    const address = () => /http:\/\/127\.0\.0\.1:\d+\/\S+/.exec(said)?.[0];
    while (!address() && server.exitCode === null)
        await Promise.race([once(server.stdout, 'data'), once(server.stderr, 'data'), once(server, 'exit')]);
    assert.ok(address(), said);
    return { server, address: address() };
}

test('a served page asks for what is chosen, sets roofs and follows its result', async (t) => {
    const { result, file, write } = copied('served');
    const model = JSON.parse(execFileSync(program, ['report', file, '--json', '-'], { stdio: 'pipe' }));
    const placed = (...configurations) => placedRows(model.results[0], ...configurations);
    const { server, address } = await serve(file);
    const page = await openPage(t, address, (asked) => asked.startsWith(address));
    t.after(() => server.kill());
    const settled = (count) => page.waitForFunction((wanted) =>
        document.querySelectorAll('.points > path').length === wanted, count);

    assert.deepEqual(await drawnRows(page), placed('f-1-L1-all'));
    await page.locator('.segments button', { hasText: /^DRAM$/ }).click();
    await settled(placed('f-1-L1-all', 'f-1-DRAM-all').length);
    assert.deepEqual(await drawnRows(page), placed('f-1-L1-all', 'f-1-DRAM-all'));

    await page.locator('.grid-row').first().click();
    await page.locator('.details .message').first().waitFor();
    assert.equal(await page.locator('.details .note').count(), 0);

    const dram = page.locator('.roofs tr', { hasText: 'DRAM Bandwidth' });
    const before = await dram.locator('.number').textContent();
    const submit = async (action) => {
        await page.locator('.roof-menu summary').click();
        await Promise.all([page.waitForEvent('load'), action()]);
        await page.waitForSelector('.points > path');
        return dram.locator('.number').textContent();
    };
    assert.equal(await submit(async () => {
        await page.selectOption('[data-focus=own-roof]', { label: 'DRAM Bandwidth' });
        await page.fill('[data-focus=own-value]', '140.5');
        await page.click('.roofs [type=submit]');
    }), '140.5 GB/s');
    assert.equal(await submit(() => page.click('[data-focus=own-clear]')), before);

    const { FunctionName: name } = result.rows[0].cells;
    await page.locator('.grid-row').nth((await listedNames(page)).indexOf(name)).click();
    await page.waitForFunction((wanted) => document.querySelector('.details h2')?.textContent === wanted,
        name);
    writeFileSync(file, '{');
    const fault = page.locator('.notice', { hasText: 'served.json' });
    await fault.waitFor();
    await page.locator('.segments button', { hasText: /^Integer$/ }).click();
    await settled(placed('i-1-L1-all', 'i-1-DRAM-all').length);
    assert.equal(await fault.count(), 1, 'what loads is another matter');

    result.rows[0].cells.FunctionName = 'renamed';
    await Promise.all([page.waitForEvent('load'), write()]);
    await page.waitForSelector('.grid-row');
    assert.ok((await listedNames(page)).includes('renamed'));
    assert.equal(await page.locator('.details h2').count(), 0, 'the pin was of another row');
});

test('a page that hears of no change says so, and loads again once it asks', async (t) => {
    const { result, file, write } = copied('unheard');
    const { server, address } = await serve(file);
    t.after(() => server.kill());
    const page = await openPage(t, address, (asked) => asked.startsWith(address),
        (status) => [409, 503].includes(status));
    await page.route('**/events*', (route) => route.fulfill({ status: 503, body: '{}' }));
    await page.reload();
    const lost = page.locator('.notice', { hasText: 'connection' });
    await lost.waitFor();
    const choose = (caption) => page.locator('.segments button', { hasText: caption }).click();
    await choose(/^DRAM$/);
    await page.waitForURL(/tokens=f-1-L1-DRAM/);
    await page.waitForSelector('#app:not([aria-busy])');
    assert.equal(await lost.count(), 1);

    const served = async () => (await fetch(address)).text();
    const before = await served();
    result.rows[0].cells.FunctionName = 'renamed';
    write();
    while (await served() === before) await new Promise((done) => setTimeout(done, 100));
    await Promise.all([page.waitForEvent('load'), choose(/^Integer$/)]);
    await page.waitForSelector('.grid-row');
    assert.ok((await listedNames(page)).includes('renamed'));
    assert.match(page.url(), /tokens=i-1-L1-DRAM/);
});
