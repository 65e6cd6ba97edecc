// Everything about the current call: arguments, what it changed, what the checker found, its pictures.
import { Fragment } from 'preact';
import { useMemo, useState } from 'preact/hooks';
import type { Argument, CallAnswer, Finding } from '../engine/contract';
import { revealRect, showPageEdge, step } from '../model/actions';
import { formatCount, formatTime, sentence } from '../model/format';
import { type OpenFile, activeFile, useApp } from '../model/state';
import { EnginePicture } from './engine_picture';
import { StepButton } from './step_button';

const kPictureNames = { brush: 'Brush', source: 'Source', dib: 'Image', glyph: 'Glyph' };
const kLongText = 600; // characters

function Findings({ findings }: { findings: Finding[] }) {
  return (
    <>
      {findings.map((finding, index) => (
        <div key={index} class="finding">
          <b>
            Mistake {finding.mistake}
            {finding.argument && (
              <>
                {' '}
                in <code>{finding.argument}</code>
              </>
            )}
          </b>
          <p>{sentence(finding.wrong)}</p>
          <p class="advice">{sentence(finding.advice)}</p>
        </div>
      ))}
    </>
  );
}

const Color = ({ color }: { color: string | undefined }) =>
  color ? <i class="swatch" style={{ background: color }} title={color} /> : null;

// Strings and lists may be long; the rest of them is a click away.
function Value({ text }: { text: string }) {
  const [isWhole, setWhole] = useState(false);
  const isLong = text.length > kLongText + 60;
  return (
    <>
      <span class="value">{isLong && !isWhole ? `${text.slice(0, kLongText)}…` : text}</span>
      {isLong && (
        <button type="button" class="link" onClick={() => setWhole(!isWhole)}>
          {isWhole ? 'Less' : `All ${formatCount(text.length)} characters`}
        </button>
      )}
    </>
  );
}

function ArgumentRows({ argument, answer, file }: { argument: Argument; answer: CallAnswer; file: number }) {
  const picture = answer.pictures.find(({ id }) => id === argument.picture);
  return (
    <>
      <tr>
        <th scope="row" title={argument.type}>
          {argument.name}
          {argument.type.includes('*') && <span class="type">{argument.type.replace('const ', '')}</span>}
        </th>
        <td>
          <Color color={argument.color} />
          <Value text={argument.text} />
          {argument.formula && <div class="formula">{argument.formula}</div>}
          {argument.flags && argument.flags.length > 0 && (
            <div class="chips">
              {argument.flags.map((flag) => (
                <span key={flag} class="chip">
                  {flag}
                </span>
              ))}
            </div>
          )}
          {/* The text of a rectangle says all that its fields say. */}
          {argument.fields && argument.fields.length > 0 && !argument.type.includes('BandRect') && (
            <dl class="fields">
              {argument.fields.map((field) => (
                <Fragment key={field.name}>
                  <dt>{field.name}</dt>
                  <dd>
                    <Color color={field.color} />
                    {field.text}
                  </dd>
                </Fragment>
              ))}
            </dl>
          )}
          {picture && (
            <EnginePicture
              file={file}
              question={{ d: 'picture', call: answer.call, id: picture.id }}
              label={kPictureNames[picture.what]}
              room={picture.what === 'brush' ? 64 : 220}
            />
          )}
        </td>
      </tr>
    </>
  );
}

function Changed({ answer, file }: { answer: CallAnswer; file: number }) {
  const { rect, pixels, tags } = answer.changed;
  if (!rect || (pixels === 0 && tags === 0)) {
    return (
      <section class="part">
        <h3>Changed</h3>
        <p class="muted">Nothing on the page.</p>
      </section>
    );
  }
  return (
    <section class="part">
      <h3>Changed</h3>
      <p>
        <b>{formatCount(pixels)}</b> {pixels === 1 ? 'pixel' : 'pixels'}
        {tags > 0 && (
          <>
            {' '}
            and <b>{formatCount(tags)}</b> {tags === 1 ? 'tag' : 'tags'}
          </>
        )}{' '}
        in <span class="mono">({rect.join(', ')})</span>{' '}
        <button type="button" class="link" onClick={() => revealRect(rect)}>
          Show on page
        </button>
      </p>
      <div class="change-pictures">
        {(['before', 'after', 'outline'] as const).map((which) => (
          <EnginePicture
            key={which}
            file={file}
            question={{ d: 'change', call: answer.call, which }}
            label={{ before: 'Before', after: 'After', outline: 'Outline' }[which]}
            room={108}
          />
        ))}
      </div>
    </section>
  );
}

function Answer({ shown, file }: { shown: CallAnswer; file: OpenFile }) {
  const page = shown.page >= 0 ? file.summary.pages[shown.page] : undefined;
  const named = new Set(shown.arguments.map(({ picture }) => picture));
  const others = shown.pictures.filter(({ id }) => !named.has(id));
  return (
    <>
      <dl class="facts">
        <div>
          <dt>Time</dt>
          <dd>{formatTime(shown.ns)}</dd>
        </div>
        <div>
          <dt>Result</dt>
          <dd class="mono">{String(shown.result)}</dd>
        </div>
        <div>
          <dt>Device</dt>
          <dd>{shown.device > 0 ? shown.device : '–'}</dd>
        </div>
        <div>
          <dt>Page, band</dt>
          <dd>{page ? `${page.page + 1}, ${shown.band + 1} of ${page.bands.length}` : '–'}</dd>
        </div>
      </dl>
      {shown.made === false && <p class="notice notice-warn">The replay leaves this call out.</p>}
      {shown.differs && (
        <p class="notice notice-bad">The replay gives another result, or another band, than was recorded.</p>
      )}
      <Findings findings={shown.findings} />
      <section class="part">
        <h3>Arguments</h3>
        <table class="arguments">
          <tbody>
            {shown.arguments.map((argument) => (
              <ArgumentRows
                key={`${shown.call}/${argument.name}`}
                argument={argument}
                answer={shown}
                file={file.number}
              />
            ))}
          </tbody>
        </table>
      </section>
      {others.length > 0 && (
        <section class="part">
          <h3>Pictures</h3>
          <div class="pictures-grid">
            {others.map((picture) => (
              <EnginePicture
                key={picture.id}
                file={file.number}
                question={{ d: 'picture', call: shown.call, id: picture.id }}
                label={picture.label || picture.what}
                room={others.length > 2 ? 72 : 220}
              />
            ))}
          </div>
        </section>
      )}
      <Changed answer={shown} file={file.number} />
      <section class="part">
        <h3>As text</h3>
        <p class="whole-line">
          <Value key={shown.call} text={shown.line} />
        </p>
      </section>
    </>
  );
}

export function CallPanel() {
  const file = useApp(activeFile);
  const call = useApp((state) => state.call);
  const answer = useApp((state) => state.answer);
  const error = useApp((state) => state.answerError);
  const shown = error ? null : answer;
  // The same object as before is not looked at again: a step changes the number at once, the rest with the answer.
  const body = useMemo(() => shown && file && <Answer shown={shown} file={file} />, [shown, file]);
  if (!file) return null;
  return (
    <div class="call-panel" data-call={shown?.call ?? ''} aria-busy={shown?.call !== call}>
      <header class="call-head">
        <h2>
          <span class="muted">{call}</span> {shown?.function ?? ''}
        </h2>
        <div class="buttons">
          <StepButton label="First call of the page" text="⇤" keys="Home" onClick={() => showPageEdge('first')} />
          <StepButton label="Previous call" text="‹" keys="←" onClick={() => step(-1, 'call')} />
          <StepButton label="Next call" text="›" keys="→" onClick={() => step(1, 'call')} />
          <StepButton label="Last call of the page" text="⇥" keys="End" onClick={() => showPageEdge('last')} />
        </div>
      </header>
      {error && (
        <p class="notice notice-bad" role="alert">
          {error}
        </p>
      )}
      {body}
    </div>
  );
}
