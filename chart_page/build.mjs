// Bundles the page: page.js, page.css, page.html (placeholders left) and page.csp.json, the hashes of the inline blocks.
import { createHash } from 'node:crypto';
import { copyFile, mkdir, readFile, writeFile } from 'node:fs/promises';
import { dirname, join, resolve } from 'node:path';
import { argv } from 'node:process';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';

const folder = dirname(fileURLToPath(import.meta.url));
const source = join(folder, 'src');
const out = resolve(argv[2] ?? join(folder, 'dist'));

// Browsers from 2023 on: those that inflate by themselves.
const options = {
    bundle: true,
    minify: true,
    target: ['chrome103', 'firefox113', 'safari16.4'],
    logLevel: 'warning',
};

await mkdir(out, { recursive: true });
await Promise.all([
    build({
        ...options,
        entryPoints: [join(source, 'main.js')],
        format: 'iife',
        outfile: join(out, 'page.js'),
    }),
    build({
        ...options,
        stdin: {
            contents: '@import "./chart/chart.css"; @import "./style.css";',
            loader: 'css',
            resolveDir: source,
        },
        outfile: join(out, 'page.css'),
    }),
    copyFile(join(source, 'page.html'), join(out, 'page.html')),
]);

/** The hash that the page's policy allows, of a block exactly as it stands between its tags. */
const policyHash = async (/** @type {string} */ file) => {
    const text = await readFile(join(out, file), 'utf8');
    if (/<\/(script|style)|<!--/i.test(text)) throw new Error(`${file} would end the block that holds it`);
    return `sha256-${createHash('sha256').update(text).digest('base64')}`;
};
const policy = { script: await policyHash('page.js'), style: await policyHash('page.css') };
await writeFile(join(out, 'page.csp.json'), `${JSON.stringify(policy)}\n`);
