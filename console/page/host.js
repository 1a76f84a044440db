// The host: the service's settings, what is loaded, the configuration as a whole, what the doctor says.
import { get, send, upload } from './api.js';
import { failed } from './actions.js';
import { codes } from './codes.js';
import { confirm, h, replace, say, toast } from './dom.js';
import { showForm } from './form.js';
import { differenceList, showHistory } from './history.js';
import { live, may } from './live.js';
import { showModules } from './modules.js';
import { dayAndClock, isSame, shown } from './text.js';

// Alerts after which the history has something new.
const changing = [codes.created, codes.deleted, codes.renamed, codes.modified];

const tones = { error: 'bad', warning: 'warn', note: 'fine' };

function facts() {
  const host = live.host || {};
  const rows = [
    ['Service', host.running ? 'running' : `stopped${host.codeName ? ` (${host.codeName})` : ''}`],
    ['Installation', host.directory], ['Version', host.version], ['Process', host.process],
    ['Since', host.started ? dayAndClock(host.started) : ''],
    ['Newest alert', live.newest() || host.newestAlert], ['You are', `${host.user}, ${host.role}`]];
  return h('dl', { class: 'facts' }, rows.map(([name, value]) =>
    h('div', {}, h('dt', {}, name), h('dd', {}, value === undefined ? '–' : value))));
}

async function control(verb, lookAgain) {
  const isSure = await confirm(`${verb[0].toUpperCase()}${verb.slice(1)} the service?`,
    h('p', {}, verb === 'start' ? 'Plug-ins and configuration are loaded.'
      : 'Running requests are waited for. Boards that are marked for it are stopped.'), verb);
  if (!isSure) return;
  try {
    await send('POST', `/host/${verb}`);
    toast(`the service: ${verb} done`, 'good');
  } catch (refusal) {
    failed(`${verb} of the service`, refusal);
  }
  live.ask('host', 'boards', 'detected', 'operations');
  lookAgain();
}

async function doctor(place) {
  const again = h('button', { onclick: () => doctor(place), 'data-key': 'doctor' }, 'Look again');
  try {
    const { findings } = await get('/host/findings');
    replace(place, h('div', { class: 'bar' }, h('h2', {}, 'Doctor'), again),
      findings.length === 0 ? h('p', { class: 'well' }, 'Nothing is wrong.')
        : h('ul', { class: 'findings' }, findings.map((f) => h('li', { class: tones[f.severity] },
          h('strong', {}, `${f.severity}, ${f.subject}: `), shown(f.text),
          f.remedy && h('p', { class: 'sub' }, shown(f.remedy))))));
  } catch (refusal) {
    failed('doctor', refusal);
  }
}

// What would change is shown before anything does.
function transfer(place, lookAgain) {
  const preview = h('div', { role: 'status' });
  const file = h('input', { type: 'file', id: 'import-file', onchange: look });

  async function bring(bytes) {
    const isSure = await confirm('Import this configuration?',
      h('p', {}, 'It takes the place of the whole configuration. Boards are stopped, and plug-ins '
        + 'loaded anew.'), 'Import');
    if (!isSure) return;
    try {
      const answer = await upload('PUT', '/configuration', bytes);
      toast(`imported ${answer.objects} objects, generation ${answer.generation}`, 'good');
      preview.replaceChildren();
      file.value = '';
    } catch (refusal) {
      failed('import', refusal);
    }
    live.ask('host', 'boards', 'detected', 'operations');
    lookAgain();
  }

  async function look() {
    preview.replaceChildren();
    if (!file.files.length) return;
    const bytes = await file.files[0].arrayBuffer();
    try {
      const answer = await upload('PUT', '/configuration?preview=true', bytes);
      if (answer.findings.length) {
        replace(preview, h('p', { class: 'refusal' }, 'This file cannot be imported:'),
          h('ul', { class: 'findings' }, answer.findings.map((f) => h('li', { class: 'bad' },
            f.line ? `line ${f.line}, column ${f.column}: ` : '', shown(f.text)))));
      } else {
        replace(preview, h('h3', {}, 'What it would change'),
          ...[differenceList(answer.differences)].flat(),
          answer.differences.length > 0 && h('button', {
            class: 'primary', 'data-key': 'import', onclick: () => bring(bytes),
          }, 'Import'));
      }
      say('the preview is there');
    } catch (refusal) {
      failed('preview', refusal);
    }
  }

  place.replaceChildren(h('h2', {}, 'Export and import'),
    h('p', {}, h('a', { class: 'button', href: '/api/v1/configuration', download: 'configuration.oam' },
      'Export the configuration')),
    may('admin') ? h('p', { class: 'inline' },
      h('label', { for: 'import-file' }, 'Look at a file to import'), file)
      : h('p', { class: 'empty' }, 'To import needs the role admin.'), preview);
}

export async function show(main) {
  const panel = (id) => h('section', { class: 'panel', id });
  const about = panel('about');
  const findings = panel('doctor');
  const loaded = panel('modules');
  const settings = panel('settings');
  const files = panel('transfer');
  const history = panel('generations');
  main.replaceChildren(h('div', { class: 'head' }, h('h1', { tabindex: '-1' }, 'Host')),
    h('div', { class: 'columns' }, h('div', {}, about, settings, loaded),
      h('div', {}, findings, files, history)));
  let changes;
  let keywords;
  const lookAgain = () => {
    for (const part of [changes, keywords]) part?.reload();
    doctor(findings);
    showModules(loaded);
  };
  const draw = () => replace(about, h('h2', {}, 'Service'), facts(), may('admin') && live.host
    && h('div', { class: 'bar' }, (live.host.running ? ['restart', 'stop'] : ['start']).map((verb) =>
      h('button', { 'data-key': verb, onclick: () => control(verb, lookAgain) },
        verb[0].toUpperCase() + verb.slice(1)))));
  draw();
  transfer(files, lookAgain);
  const isSetting = (name) => !/^(DetectedBoards|Boards|ManagedObjects)\b/i.test(name);
  [changes, keywords] = await Promise.all([showHistory(history, ''),
    showForm(settings, 'Supervisor', { title: 'Supervisor', only: isSetting }),
    doctor(findings), showModules(loaded)]);
  let seen = live.newest();
  return (what) => {
    if (['host', 'alerts'].includes(what)) draw();
    if (what !== 'alerts') return;
    const fresh = live.alerts.filter((a) => a.sequence > seen);
    seen = live.newest();
    if (fresh.some((a) => changing.includes(a.code))) changes.reload();
    if (fresh.some((a) => a.code === codes.modified && isSame(a.source, 'Supervisor')))
      keywords.reload();
  };
}
