// The page's keys: what they do, and the list of them.
import { figures, make } from './dom.js';
import { texts } from './texts.js';

/**
 * @param {Record<string, () => void>} keys of the whole page; the parts have keys of their own
 */
export function createHelp(keys) {
    const lines = [
        ['/', 'search'], ['t', 'list'], ['\u2191 \u2193', 'move'], ['Enter', 'pin'], ['Esc', 'unpin'],
        ['0', 'zoom'], ['+ \u2212', 'zoom_in'], ['l', 'colour'], ['?', 'help'],
    ];
    const element = make('dialog', { 'aria-label': texts('page_help') },
        make('h2', null, texts('page_help')),
        figures([], lines.map(([key, id]) => [make('kbd', null, key), texts(`page_key_${id}`)])),
        make('p', null, texts('page_help_mouse')),
        make('form', { method: 'dialog' }, make('button', { autofocus: true }, texts('page_close'))));
    const open = () => element.open || element.showModal();
    const isTyping = ({ tagName, type }) =>
        tagName === 'SELECT' || (tagName === 'INPUT' && type !== 'checkbox') || tagName === 'TEXTAREA';
    addEventListener('keydown', (event) => {
        if (event.defaultPrevented || event.ctrlKey || event.metaKey || event.altKey || element.open) return;
        if (isTyping(event.target)) {
            if (event.key === 'Escape') event.target.blur();
            return;
        }
        const act = event.key === '?' ? open : Object.hasOwn(keys, event.key) && keys[event.key];
        if (!act) return;
        event.preventDefault();
        act();
    });
    return { element, open };
}
