// Where the time goes: by function, and the slowest calls.
import { useEffect, useState } from 'preact/hooks';
import { Abandoned, type CostsAnswer } from '../engine/contract';
import { engine, showCall } from '../model/actions';
import { formatCount, formatTime, sentence, shortFunction } from '../model/format';
import { activeFile, useApp } from '../model/state';

export function CostsPanel() {
  const file = useApp(activeFile);
  const page = useApp((state) => state.page);
  const call = useApp((state) => state.call);
  const [isPageOnly, setPageOnly] = useState(false);
  const [costs, setCosts] = useState<CostsAnswer | null>(null);
  const [error, setError] = useState('');
  const scope = isPageOnly && page >= 0 ? page : null;
  useEffect(() => {
    if (!file) return;
    const controller = new AbortController();
    engine
      .ask<CostsAnswer>(file.number, { q: 'costs', page: scope }, controller.signal)
      .then((answer) => {
        if (controller.signal.aborted) return;
        setCosts(answer);
        setError('');
      })
      .catch((reason: unknown) => {
        if (reason instanceof Abandoned || controller.signal.aborted) return;
        setError(sentence(reason instanceof Error ? reason.message : String(reason)));
      });
    return () => controller.abort();
  }, [file, scope]);
  if (!file) return null;
  const nameOf = (value: string | number) =>
    shortFunction(typeof value === 'number' ? (file.columns.functions[value] ?? String(value)) : value);
  const functions = [...(costs?.byFunction ?? [])].filter(({ calls }) => calls > 0).sort((a, b) => b.ns - a.ns);
  const total = functions.reduce((sum, { ns }) => sum + ns, 0);
  return (
    <div class="costs-panel" aria-busy={costs === null}>
      <header class="call-head">
        <h2>Costs</h2>
        <label class="check">
          <input
            type="checkbox"
            name="page-only"
            checked={isPageOnly}
            onChange={(event) => setPageOnly(event.currentTarget.checked)}
          />
          <span>This page only</span>
        </label>
      </header>
      {error !== '' && (
        <p class="notice notice-bad" role="alert">
          {error}
        </p>
      )}
      {costs && (
        <>
          <table class="numbers">
            <caption>By function, {formatTime(total)} in all</caption>
            <thead>
              <tr>
                <th scope="col">Function</th>
                <th scope="col">Calls</th>
                <th scope="col">Time</th>
                <th scope="col">Share</th>
                <th scope="col" title="Time for each pixel that changed">
                  ns/pixel
                </th>
              </tr>
            </thead>
            <tbody>
              {functions.map((row) => (
                <tr key={row.function}>
                  <th scope="row">{nameOf(row.function)}</th>
                  <td>{formatCount(row.calls)}</td>
                  <td>{formatTime(row.ns)}</td>
                  <td class="share">
                    <span class="share-bar" style={{ width: `${total > 0 ? (row.ns / total) * 100 : 0}%` }} />
                    <span class="share-text">{total > 0 ? `${((row.ns / total) * 100).toFixed(1)} %` : ''}</span>
                  </td>
                  <td>{row.pixels > 0 ? (row.ns / row.pixels).toPrecision(3) : '–'}</td>
                </tr>
              ))}
            </tbody>
          </table>
          <h3>Slowest calls</h3>
          <ol class="slowest">
            {costs.slowest.map((slow) => (
              <li key={slow.call}>
                <button
                  type="button"
                  class="slow"
                  aria-current={slow.call === call}
                  onClick={() => showCall(slow.call)}
                >
                  <span class="row-number">{slow.call}</span>
                  <span>{nameOf(file.columns.function[slow.call] ?? 0)}</span>
                  <span class="row-time">{formatTime(slow.ns)}</span>
                </button>
              </li>
            ))}
          </ol>
        </>
      )}
    </div>
  );
}
