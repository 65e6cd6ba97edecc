// The slider over the calls of a page, with the time of each and its bands behind it, and what plays it.
import { useEffect, useRef } from 'preact/hooks';
import { kHasFindings } from '../engine/contract';
import { showCall, showPageEdge, step } from '../model/actions';
import { formatTime } from '../model/format';
import { togglePlay } from '../model/playback';
import { activeFile, shownPage, store, useApp } from '../model/state';
import type { Unit } from '../model/steps';
import { StepButton } from './step_button';
import { kStripHeight, paintStrip } from './time_strip';

const kSpeeds = [1, 2, 5, 10, 20, 50, 100, 500, 2000];

function Strip() {
  const canvas = useRef<HTMLCanvasElement>(null);
  const file = useApp(activeFile);
  const page = useApp(shownPage);
  const colors = useApp((state) => state.colors);
  useEffect(() => {
    const element = canvas.current;
    if (!element || !file || !page) return;
    const paint = () => paintStrip(element, file.columns, page);
    const observer = new ResizeObserver(paint);
    observer.observe(element);
    return () => observer.disconnect();
  }, [file, page, colors]);
  return <canvas ref={canvas} class="strip" style={{ height: `${kStripHeight}px` }} aria-hidden="true" />;
}

export function Timeline() {
  const file = useApp(activeFile);
  const page = useApp(shownPage);
  const call = useApp((state) => state.call);
  const isPlaying = useApp((state) => state.isPlaying);
  const unit = useApp((state) => state.playUnit);
  const speed = useApp((state) => state.speed);
  if (!file) return null;
  const first = page?.firstCall ?? 0;
  const last = page?.lastCall ?? Math.max(0, file.columns.count - 1);
  const inPage = Math.max(first, Math.min(last, call));
  const flags = file.columns.flags[call] ?? 0;
  return (
    <section class="timeline" aria-label="Timeline">
      <div class="buttons">
        <StepButton label="First call of the page" text="⇤" keys="Home" onClick={() => showPageEdge('first')} />
        <StepButton label="Previous band" text="«" keys="<" onClick={() => step(-1, 'band')} />
        <StepButton label="Previous drawing call" text="‹" keys="," onClick={() => step(-1, 'drawing')} />
        <button
          type="button"
          class="play"
          aria-label={isPlaying ? 'Pause' : 'Play'}
          title={`${isPlaying ? 'Pause' : 'Play'} (Space)`}
          disabled={!page}
          onClick={togglePlay}
        >
          {isPlaying ? '❚❚' : '▶'}
        </button>
        <StepButton label="Next drawing call" text="›" keys="." onClick={() => step(1, 'drawing')} />
        <StepButton label="Next band" text="»" keys=">" onClick={() => step(1, 'band')} />
        <StepButton label="Last call of the page" text="⇥" keys="End" onClick={() => showPageEdge('last')} />
      </div>
      <select
        aria-label="Play by"
        value={unit}
        onChange={(event) => store.set({ playUnit: event.currentTarget.value as Unit })}
      >
        <option value="call">by call</option>
        <option value="drawing">by drawing call</option>
        <option value="band">by band</option>
      </select>
      <select
        aria-label="Speed"
        value={speed}
        onChange={(event) => store.set({ speed: Number(event.currentTarget.value) })}
      >
        {kSpeeds.map((value) => (
          <option key={value} value={value}>
            {value} a second
          </option>
        ))}
      </select>
      <div class="slider">
        <Strip />
        <input
          id="slider"
          type="range"
          aria-label="Call of the page"
          aria-valuetext={`call ${inPage}, ${formatTime(file.columns.ns[inPage] ?? 0)}`}
          min={first}
          max={last}
          step={1}
          value={inPage}
          onInput={(event) => showCall(Number(event.currentTarget.value))}
        />
      </div>
      <form
        class="go-to"
        onSubmit={(event) => {
          event.preventDefault();
          const input = event.currentTarget.elements.namedItem('call') as HTMLInputElement;
          if (/^\s*\d+\s*$/.test(input.value)) showCall(Number(input.value));
          input.value = String(store.state.call);
          input.select();
        }}
      >
        <input
          id="go-to"
          name="call"
          class="mono"
          inputMode="numeric"
          aria-label="Current call; type a number and press Enter to go there"
          title="Go to a call (g)"
          value={call}
          data-finding={(flags & kHasFindings) !== 0}
        />
        <span class="muted">of {file.columns.count}</span>
      </form>
    </section>
  );
}
