// The sheet that asks for what a change of stage needs.

import { post } from './api.js';
import { element, recordText } from './dom.js';

function field(label, input, hint) {
  const id = `sheet-${input.name}`;
  input.id = id;
  if (hint) input.setAttribute('aria-describedby', `${id}-hint`);
  return element('div', { class: 'field' },
    element('label', { for: id }, label, input.required && element('span', { class: 'required', text: ' (required)' })),
    input, hint && element('p', { class: 'hint', id: `${id}-hint`, text: hint }));
}

/**
 * Asks for the inputs and moves the card. `stages` are those to choose from, `stage` the key of the chosen one;
 * `onChoice` is called with the key of each that is chosen, the first one included. Gives back the stage's name, or
 * nothing when the user cancels; throws what the server refuses for another reason than an input.
 */
export async function askAndChangeStage({ card, dragged, stages, stage, onChoice }) {
  let options = await post('/api/stage-change/options', { card: dragged, stage });
  return new Promise((resolve, reject) => {
    const choice = element('select', { name: 'stage' },
      stages.map((one) => element('option', { value: one.id, text: one.title, selected: one.id === stage })));
    const start = element('input', { type: 'datetime-local', name: 'start', max: '4000-12-31T23:59' });
    const end = element('input', { type: 'datetime-local', name: 'end', max: '4000-12-31T23:59' });
    const note = element('textarea', { name: 'note', rows: '3', dir: 'auto' });
    const trouble = element('p', { class: 'trouble', role: 'alert' });
    const again = element('p', { class: 'hint' });
    const submit = element('button', { type: 'submit', class: 'primary', text: 'Move' });
    const cancel = element('button', { type: 'button', text: 'Cancel', click: () => dialog.close() });
    const fields = element('div', { class: 'fields' });

    const useOptions = (isFirst) => {
      if (isFirst) {
        start.value = options.start;
        end.value = options.end;
        note.value = options.note;
      }
      start.required = options.requirements.start;
      end.required = options.requirements.end;
      note.required = options.requirements.note;
      again.textContent = options.isRepeatingStage ? 'The card is in this stage already: it begins another stay there.' : '';
      fields.replaceChildren(field('Stage', choice), again,
        field('Start', start, `Time zone: ${options.timeZone}`),
        field('End', end, 'Only when the card leaves the stage at once.'), field('Note', note));
    };
    useOptions(true);

    choice.addEventListener('change', async () => {
      submit.disabled = true;
      trouble.textContent = '';
      try {
        options = await post('/api/stage-change/options', { card: dragged, stage: Number(choice.value) });
        useOptions(false);
        onChoice?.(Number(choice.value));
        choice.focus();
      } catch (problem) {
        trouble.textContent = problem.message;
      }
      submit.disabled = false;
    });

    const form = element('form', {
      novalidate: true,
      submit: async (event) => {
        event.preventDefault();
        submit.disabled = true;
        trouble.textContent = '';
        try {
          const change = await post('/api/stage-change',
            { card: dragged, stage: Number(choice.value), start: start.value, end: end.value, note: note.value });
          resolve(change.stageName);
          dialog.close();
        } catch (problem) {
          // An input that is missing or wrong can be corrected here; nothing else can.
          if (problem.status === 422) {
            trouble.textContent = problem.message;
            submit.disabled = false;
          } else {
            reject(problem);
            dialog.close();
          }
        }
      },
    }, element('h2', { id: 'sheet-title', text: 'Move to another stage' }), recordText('p', card.title, { class: 'subject' }),
      fields, trouble, element('div', { class: 'buttons' }, cancel, submit));
    const dialog = element('dialog', {
      class: 'sheet', 'aria-labelledby': 'sheet-title',
      // A promise that is settled already stays so.
      close: () => { dialog.remove(); resolve(undefined); },
    }, form);
    document.body.append(dialog);
    dialog.showModal();
    onChoice?.(stage);
    // Nothing is chosen yet when the card is where it was.
    if (options.isRepeatingStage) choice.focus();
    else (options.requirements.note ? note : submit).focus();
  });
}
