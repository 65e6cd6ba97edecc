// The panel at the right: one of five subjects, chosen by tabs.
import type { ComponentType } from 'preact';
import { setPanel } from '../model/actions';
import { type Panel, useApp } from '../model/state';
import { CallPanel } from './call_panel';
import { ComparePanel } from './compare_panel';
import { CostsPanel } from './costs_panel';
import { FilePanel } from './file_panel';
import { PixelPanel } from './pixel_panel';

export const kPanels: readonly { panel: Panel; label: string; content: ComponentType }[] = [
  { panel: 'call', label: 'Call', content: CallPanel },
  { panel: 'pixel', label: 'Pixel', content: PixelPanel },
  { panel: 'costs', label: 'Costs', content: CostsPanel },
  { panel: 'compare', label: 'Compare', content: ComparePanel },
  { panel: 'file', label: 'File', content: FilePanel },
];

export function SidePanel() {
  const shown = useApp((state) => state.panel);
  const index = kPanels.findIndex(({ panel }) => panel === shown);
  const Content = kPanels[index]?.content ?? CallPanel;
  const move = (event: KeyboardEvent) => {
    const by = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
    if (by === undefined) return;
    event.preventDefault();
    event.stopPropagation();
    const next = kPanels[(index + by + kPanels.length) % kPanels.length];
    if (!next) return;
    setPanel(next.panel);
    document.getElementById(`tab-${next.panel}`)?.focus();
  };
  return (
    <section class="side" aria-label="Details">
      <div class="tabs" role="tablist" aria-label="Details" onKeyDown={move}>
        {kPanels.map(({ panel, label }, number) => (
          <button
            key={panel}
            id={`tab-${panel}`}
            type="button"
            role="tab"
            aria-selected={panel === shown}
            aria-controls="side-panel"
            tabIndex={panel === shown ? 0 : -1}
            title={`${label} (${number + 1})`}
            onClick={() => setPanel(panel)}
          >
            {label}
          </button>
        ))}
      </div>
      <div id="side-panel" class="side-body" role="tabpanel" aria-labelledby={`tab-${shown}`} tabIndex={0}>
        <Content />
      </div>
    </section>
  );
}
