// What the colors of the heat map mean.
import { formatTime } from '../model/format';
import { shownPage, store, useApp } from '../model/state';
import { useStore } from '../model/store';
import { heatGradient, heatValue } from '../view/heat';
import { heatArrivals, heatMap } from '../view/heat_layer';

export function Legend() {
  const heat = useApp((state) => state.heat);
  const file = useApp((state) => state.files[state.active]);
  const page = useApp(shownPage);
  useStore(heatArrivals, (state) => state.count);
  if (heat === 'none' || !file || !page || store.state.files.length === 0) return null;
  const map = heatMap(file, page, heat);
  const text = (share: number) => {
    const value = heatValue(heat, share, map?.max ?? 0);
    if (heat === 'time') return value < 10 ? `${Number(value.toPrecision(2))} ns` : formatTime(value);
    return `${Number(value.toPrecision(2))}×`;
  };
  return (
    <aside class="legend" aria-label="Heat map legend">
      <h2>{heat === 'time' ? 'Time of the calls, for each pixel' : 'How often pixels were written'}</h2>
      <div class="legend-bar" style={{ background: heatGradient }} />
      <div class="legend-scale">
        {map ? [0, 0.5, 1].map((share) => <span key={share}>{text(share)}</span>) : <span>computing…</span>}
      </div>
    </aside>
  );
}
