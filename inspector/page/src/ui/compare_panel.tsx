// Two files side by side: what differs, and the way from one difference to the next.
import { differences, openChosen, revealRect, showCall, stepDifference } from '../model/actions';
import { formatCount, sentence } from '../model/format';
import { store, useApp } from '../model/state';
import { useRef } from 'preact/hooks';

const kMaxListed = 200;

function Chooser() {
  const input = useRef<HTMLInputElement>(null);
  return (
    <>
      <input
        ref={input}
        type="file"
        hidden
        accept=".qnv"
        onChange={(event) => {
          void openChosen(event.currentTarget.files ?? []);
          event.currentTarget.value = '';
        }}
      />
      <button type="button" onClick={() => input.current?.click()}>
        Open a second file
      </button>
    </>
  );
}

export function ComparePanel() {
  const files = useApp((state) => state.files);
  const compare = useApp((state) => state.compare);
  const error = useApp((state) => state.compareError);
  const difference = useApp((state) => state.difference);
  if (files.length < 2) {
    return (
      <div class="empty">
        <h2>One file is open</h2>
        <p>With a second one both pages are shown side by side, and their differences are outlined.</p>
        <Chooser />
      </div>
    );
  }
  const all = differences(compare);
  const pixels = compare?.pages.reduce((sum, page) => sum + page.pixels, 0) ?? 0;
  const pages = Math.max(...files.map(({ summary }) => summary.pages.length));
  return (
    <div class="compare-panel" aria-busy={!compare && !error}>
      <header class="call-head">
        <h2>Compare</h2>
        <div class="buttons">
          <button
            type="button"
            disabled={all.length === 0}
            title="Previous difference (Shift+D)"
            onClick={() => stepDifference(-1)}
          >
            ‹ Previous
          </button>
          <button
            type="button"
            disabled={all.length === 0}
            title="Next difference (d)"
            onClick={() => stepDifference(1)}
          >
            Next difference ›
          </button>
        </div>
      </header>
      <dl class="facts facts-wide">
        <div>
          <dt>A</dt>
          <dd>{files[0]?.name}</dd>
        </div>
        <div>
          <dt>B</dt>
          <dd>{files[1]?.name}</dd>
        </div>
      </dl>
      {error ? (
        <p class="notice notice-bad" role="alert">
          {error}
        </p>
      ) : !compare ? (
        <p class="muted">Comparing…</p>
      ) : (
        <>
          <p class={compare.same ? 'notice notice-good' : 'notice'} data-test="compare-text">
            {sentence(
              compare.text ||
                (compare.same ? 'Both files hold the same calls and paint the same pages' : 'The files differ'),
            )}
          </p>
          {compare.firstDifferent >= 0 && (
            <p>
              First different call:{' '}
              <button type="button" class="link" onClick={() => showCall(compare.firstDifferent)}>
                {compare.firstDifferent}
              </button>
            </p>
          )}
          <h3>
            {all.length === 0
              ? 'The pages are the same'
              : `${formatCount(pixels)} pixels differ, in ${formatCount(all.length)} ${all.length === 1 ? 'place' : 'places'}`}
          </h3>
          <ol class="slowest">
            {all.slice(0, kMaxListed).map(({ page, rect }, index) => (
              <li key={index}>
                <button
                  type="button"
                  class="slow"
                  aria-current={index === difference}
                  onClick={() => {
                    store.set({ difference: index - 1 });
                    stepDifference(1);
                    revealRect(rect);
                  }}
                >
                  {pages > 1 && <span>Page {page + 1}</span>}
                  <span class="mono">({rect.join(', ')})</span>
                  <span class="row-time">
                    {rect[2] - rect[0]} × {rect[3] - rect[1]}
                  </span>
                </button>
              </li>
            ))}
          </ol>
          {all.length > kMaxListed && <p class="muted">Only the first {kMaxListed} are listed; the keys visit all.</p>}
        </>
      )}
    </div>
  );
}
