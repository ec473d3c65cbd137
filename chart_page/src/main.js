// Starts the page: reads the model that the file carries.
import { make } from './dom.js';
import { Page } from './page.js';
import { inflateModel, makeSource } from './source.js';
import { setTexts } from './texts.js';

const app = document.getElementById('app');

async function start() {
    const model = await inflateModel(document.getElementById('model').textContent);
    setTexts(model.texts);
    document.documentElement.lang = model.language;
    new Page(app, model, makeSource(model)).start();
}

// Without a model there is no catalogue: these words stand in the program's first language.
if (!globalThis.DecompressionStream) {
    app.replaceChildren(make('p.boot', { role: 'alert' },
        'This browser is too old for the page: it needs one of 2023 or later.'));
} else {
    start().catch((error) => {
        app.replaceChildren(make('p.boot', { role: 'alert' },
            `The page can't show its data: ${error.message}`));
        throw error;
    });
}
