// The bar at the top: files, pages, zoom, overlays, theme, help.
import { useRef } from 'preact/hooks';
import { openChosen, showFile, showPage, stepPage, toggleTags } from '../model/actions';
import { formatCount, formatTime } from '../model/format';
import { type Heat, type Theme, activeFile, deviceOfPage, store, useApp } from '../model/state';
import { applyTheme } from '../model/theme';
import { activeView } from '../view/views';

function Files() {
  const files = useApp((state) => state.files);
  const active = useApp((state) => state.active);
  const chooser = useRef<HTMLInputElement>(null);
  return (
    <div class="group files">
      {files.map((file, index) =>
        files.length === 1 ? (
          <span key={file.number} class="one-file" title={file.name}>
            <b>{file.name}</b>
            <span class="muted">
              {formatCount(file.summary.calls)} calls, {formatTime(file.summary.totalNs)}
            </span>
          </span>
        ) : (
          <button
            key={file.number}
            type="button"
            class="file-button"
            aria-pressed={index === active}
            title={`List the calls of ${file.name} (x)`}
            onClick={() => showFile(index)}
          >
            <b>{index === 0 ? 'A' : 'B'}</b> {file.name}
          </button>
        ),
      )}
      <input
        ref={chooser}
        type="file"
        accept=".qnv"
        multiple
        hidden
        onChange={(event) => {
          void openChosen(event.currentTarget.files ?? [], true);
          event.currentTarget.value = '';
        }}
      />
      <button type="button" onClick={() => chooser.current?.click()}>
        Open…
      </button>
    </div>
  );
}

function Pages() {
  const file = useApp(activeFile);
  const page = useApp((state) => state.page);
  if (!file || file.summary.pages.length === 0) return null;
  const { pages, devices } = file.summary;
  return (
    <div class="group">
      <button
        type="button"
        aria-label="Previous page"
        title="Previous page ([)"
        disabled={page <= 0}
        onClick={() => stepPage(-1)}
      >
        ‹
      </button>
      <select aria-label="Page shown" value={page} onChange={(event) => showPage(Number(event.currentTarget.value))}>
        {pages.map((one) => (
          <option key={one.page} value={one.page}>
            Page {one.page + 1} of {pages.length}
            {devices.length > 1 ? `, device ${one.device}` : ''}
          </option>
        ))}
      </select>
      <button
        type="button"
        aria-label="Next page"
        title="Next page (])"
        disabled={page >= pages.length - 1}
        onClick={() => stepPage(1)}
      >
        ›
      </button>
    </div>
  );
}

function Zoom() {
  const isFit = useApp((state) => state.camera === null);
  return (
    <div class="group">
      <button type="button" aria-label="Zoom out" title="Zoom out (−)" onClick={() => activeView()?.zoom(-1)}>
        −
      </button>
      <button type="button" aria-label="Zoom in" title="Zoom in (+)" onClick={() => activeView()?.zoom(1)}>
        +
      </button>
      <button type="button" aria-pressed={isFit} title="Whole page (0)" onClick={() => store.set({ camera: null })}>
        Fit
      </button>
      <button
        type="button"
        title="A pixel of the page is a pixel of the screen (z)"
        onClick={() => activeView()?.zoomTo(1)}
      >
        1:1
      </button>
    </div>
  );
}

function Overlays() {
  const tags = useApp((state) => state.tags);
  const opacity = useApp((state) => state.tagOpacity);
  const hasTags = useApp((state) => deviceOfPage(state)?.hasTags ?? false);
  const heat = useApp((state) => state.heat);
  const outline = useApp((state) => state.outline);
  return (
    <div class="group">
      <button
        type="button"
        aria-pressed={outline}
        title="Outline what the call changed (o)"
        onClick={() => store.set({ outline: !store.state.outline })}
      >
        Outline
      </button>
      {hasTags && (
        <button type="button" aria-pressed={tags} title="Show the tag plane (t)" onClick={toggleTags}>
          Tags
        </button>
      )}
      {hasTags && tags && (
        <input
          type="range"
          class="opacity"
          aria-label="Opacity of the tags"
          min={0}
          max={1}
          step={0.05}
          value={opacity}
          onInput={(event) => store.set({ tagOpacity: Number(event.currentTarget.value) })}
        />
      )}
      <select
        aria-label="Heat map"
        title="Heat map (h)"
        value={heat}
        data-on={heat !== 'none'}
        onChange={(event) => store.set({ heat: event.currentTarget.value as Heat })}
      >
        <option value="none">No heat map</option>
        <option value="time">Heat: time</option>
        <option value="overdraw">Heat: overdraw</option>
      </select>
    </div>
  );
}

export function Toolbar() {
  const theme = useApp((state) => state.theme);
  const isOpen = useApp((state) => state.files.length > 0);
  return (
    <header class="toolbar">
      <h1>
        <svg viewBox="0 0 16 16" width="16" height="16" aria-hidden="true">
          <rect x="1" y="2" width="14" height="3" rx="0.5" opacity="0.45" />
          <rect x="1" y="6.5" width="14" height="3" rx="0.5" />
          <rect x="1" y="11" width="8" height="3" rx="0.5" opacity="0.7" />
        </svg>
        Call inspector
      </h1>
      {isOpen && (
        <>
          <Files />
          <Pages />
          <Zoom />
          <Overlays />
        </>
      )}
      <div class="group end">
        <select
          aria-label="Theme"
          title="Theme (m)"
          value={theme}
          onChange={(event) => applyTheme(event.currentTarget.value as Theme)}
        >
          <option value="system">System theme</option>
          <option value="light">Light</option>
          <option value="dark">Dark</option>
        </select>
        <button type="button" title="Keys (?)" onClick={() => store.set({ isHelpOpen: true })}>
          Keys
        </button>
      </div>
    </header>
  );
}
