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

// Without a model there is no catalogue: the program has left these words with the element.
const say = (text) => app.replaceChildren(make('p.boot', { role: 'alert' }, text));
if (!globalThis.DecompressionStream) say(app.dataset.old);
else
    start().catch((error) => {
        say(app.dataset.fault.replace('%1', () => error.message));
        throw error;
    });
