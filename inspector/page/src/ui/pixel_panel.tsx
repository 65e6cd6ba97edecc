// Every call that wrote the marked pixel, in order, with the value that it left.
import { showCall } from '../model/actions';
import { cssOfBand, formatBytes, formatCount } from '../model/format';
import { argumentsOf } from '../model/lines';
import { activeFile, useApp } from '../model/state';
import type { Painter } from '../engine/contract';

const kMaxShown = 2000;

const Value = ({ bytes }: { bytes: number[] }) => (
  <span class="bytes">
    <i class="swatch" style={{ background: cssOfBand(bytes) }} />
    {formatBytes(bytes)}
  </span>
);

function Entry({ painter, isNow }: { painter: Painter; isNow: boolean }) {
  const name = /^\d+ (?:QNV)?(\w+)/.exec(painter.line)?.[1] ?? '';
  return (
    <li>
      <button
        type="button"
        class="painter"
        aria-current={isNow}
        data-call={painter.call}
        onClick={() => showCall(painter.call)}
      >
        <span class="painter-head">
          <span class="row-number">{painter.call}</span>
          <b>{name}</b>
          {painter.tag !== null && (
            <span class="chip">
              tag{' '}
              {painter.tagBefore !== undefined && painter.tagBefore !== null && painter.tagBefore !== painter.tag
                ? `${painter.tagBefore} → ${painter.tag}`
                : painter.tag}
            </span>
          )}
        </span>
        <span class="painter-values">
          <Value bytes={painter.before} /> <span class="muted">→</span> <Value bytes={painter.value} />
        </span>
        <span class="painter-line">{argumentsOf(painter.line)}</span>
      </button>
    </li>
  );
}

export function PixelPanel() {
  const pixel = useApp((state) => state.pixel);
  const call = useApp((state) => state.call);
  const file = useApp(activeFile);
  if (!pixel || !file) {
    return (
      <div class="empty">
        <h2>No pixel is marked</h2>
        <p>Click a pixel of the page to see every call that wrote it, in order, with the value that each left.</p>
        <p>With the keyboard: focus the page (v), move with the arrow keys, and press Enter.</p>
      </div>
    );
  }
  const painters = pixel.painters ?? [];
  // The one that made what is seen now.
  const now = painters.reduce((last, painter) => (painter.call <= call ? painter.call : last), -1);
  const isGray = painters[0] ? painters[0].value.length === 1 : false;
  return (
    <div class="pixel-panel" aria-busy={pixel.painters === null}>
      <header class="call-head">
        <h2>
          Pixel{' '}
          <span class="mono">
            {pixel.x}, {pixel.y}
          </span>
        </h2>
      </header>
      {pixel.error ? (
        <p class="notice notice-bad" role="alert">
          {pixel.error}
        </p>
      ) : pixel.painters === null ? (
        <p class="muted">Looking through the calls…</p>
      ) : painters.length === 0 ? (
        <p class="muted">No call wrote this pixel.</p>
      ) : (
        <>
          <p class="muted">
            Written by {formatCount(painters.length)} {painters.length === 1 ? 'call' : 'calls'}. Bytes are{' '}
            {isGray ? 'gray' : 'blue, green, red, as in the band'}.
          </p>
          <ol class="painters">
            {painters.slice(0, kMaxShown).map((painter) => (
              <Entry key={painter.call} painter={painter} isNow={painter.call === now} />
            ))}
          </ol>
          {painters.length > kMaxShown && <p class="muted">Only the first {formatCount(kMaxShown)} are listed.</p>}
        </>
      )}
    </div>
  );
}
