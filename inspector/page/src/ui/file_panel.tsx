// What the file holds: where it comes from, its devices and pages, and what its host did wrong.
import { kDiffers, kHasFindings } from '../engine/contract';
import { setFilter, showPage } from '../model/actions';
import { describeDevice, formatCount, formatTime, sentence } from '../model/format';
import { activeFile, useApp } from '../model/state';
import { type TalliedMistake, kMaxTallied, tallyFindings } from '../model/findings';
import { useEffect, useMemo, useState } from 'preact/hooks';

export function FilePanel() {
  const file = useApp(activeFile);
  const shownPage = useApp((state) => state.page);
  const counts = useMemo(() => {
    let findings = 0;
    let differs = 0;
    for (const flags of file?.columns.flags ?? []) {
      if (flags & kHasFindings) findings++;
      if (flags & kDiffers) differs++;
    }
    return { findings, differs };
  }, [file]);
  const [found, setFound] = useState<TalliedMistake[]>([]);
  useEffect(() => {
    const controller = new AbortController();
    setFound([]);
    if (file) void tallyFindings(file, controller.signal, setFound);
    return () => controller.abort();
  }, [file]);
  if (!file) return null;
  const { summary } = file;
  return (
    <div class="file-panel">
      <header class="call-head">
        <h2 class="file-name">{file.name}</h2>
      </header>
      {summary.truncated !== '' && <p class="notice notice-warn">{sentence(summary.truncated)}</p>}
      {counts.differs > 0 && (
        <p class="notice notice-bad">
          {formatCount(counts.differs)} {counts.differs === 1 ? 'call gives' : 'calls give'} another result here than
          was recorded.
        </p>
      )}
      <dl class="facts facts-wide">
        <div>
          <dt>Calls</dt>
          <dd>{formatCount(summary.calls)}</dd>
        </div>
        <div>
          <dt>Time in the library</dt>
          <dd>{formatTime(summary.totalNs)}</dd>
        </div>
        <div>
          <dt>Recorded on</dt>
          <dd>
            {summary.system}, pointers of {summary.pointerBytes} bytes
          </dd>
        </div>
        {summary.notes.map(([key, text], index) => (
          <div key={index}>
            <dt>{key}</dt>
            <dd>{text}</dd>
          </div>
        ))}
      </dl>
      <section class="part">
        <h3>Findings</h3>
        {counts.findings === 0 ? (
          <p class="muted">The checker found nothing wrong.</p>
        ) : (
          <>
            {found.map((mistake) => (
              <div key={mistake.number} class="finding">
                <b>
                  Mistake {mistake.number}, {formatCount(mistake.count)} {mistake.count === 1 ? 'time' : 'times'}
                </b>
                <p>{sentence(mistake.wrong)}</p>
                <p class="advice">{sentence(mistake.advice)}</p>
              </div>
            ))}
            {counts.findings > kMaxTallied && (
              <p class="muted">Counted in the first {formatCount(kMaxTallied)} of these calls.</p>
            )}
            <button type="button" onClick={() => setFilter({ findings: true })}>
              List the {formatCount(counts.findings)} {counts.findings === 1 ? 'call' : 'calls'}
            </button>
          </>
        )}
      </section>
      <section class="part">
        <h3>Devices</h3>
        {summary.devices.length === 0 && <p class="muted">No device was made.</p>}
        <ul class="plain">
          {summary.devices.map((device) => (
            <li key={device.number}>
              <b>{device.number}</b> {describeDevice(device)}
            </li>
          ))}
        </ul>
      </section>
      <section class="part">
        <h3>Pages</h3>
        {summary.pages.length === 0 && <p class="muted">Nothing was painted.</p>}
        <ol class="slowest">
          {summary.pages.map((page) => (
            <li key={page.page}>
              <button
                type="button"
                class="slow"
                aria-current={page.page === shownPage}
                onClick={() => showPage(page.page)}
              >
                <span>Page {page.page + 1}</span>
                <span class="muted">
                  device {page.device}, {page.bands.length} {page.bands.length === 1 ? 'band' : 'bands'}, calls{' '}
                  {page.firstCall}–{page.lastCall}
                </span>
                <span class="row-time">
                  {page.width} × {page.height}
                </span>
              </button>
            </li>
          ))}
        </ol>
      </section>
    </div>
  );
}
