// The whole page: toolbar, list of calls, picture, details, timeline.
import { openChosen } from '../model/actions';
import { store, useApp } from '../model/state';
import { CallList } from './call_list';
import { Help } from './help';
import { OpenScreen } from './open_screen';
import { PageView } from './page_view';
import { SidePanel } from './side_panel';
import { Timeline } from './timeline';
import { Toolbar } from './toolbar';

function ErrorLine() {
  const error = useApp((state) => state.error);
  if (!error) return null;
  return (
    <div class="error-line" role="alert">
      <span>{error}</span>
      <button type="button" onClick={() => store.set({ error: null })}>
        Close
      </button>
    </div>
  );
}

export function App() {
  const isOpen = useApp((state) => state.files.length > 0);
  const hasTwo = useApp((state) => state.files.length === 2);
  return (
    <div
      class="app"
      onDragOver={(event) => event.preventDefault()}
      onDrop={(event) => {
        event.preventDefault();
        if (isOpen) void openChosen(event.dataTransfer?.files ?? []);
      }}
    >
      <Toolbar />
      <ErrorLine />
      {isOpen ? (
        <>
          <main class="main" data-two={hasTwo}>
            <CallList />
            <PageView />
            <SidePanel />
          </main>
          <Timeline />
        </>
      ) : (
        <OpenScreen />
      )}
      <Help />
    </div>
  );
}
