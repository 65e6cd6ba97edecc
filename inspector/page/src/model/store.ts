// A value that components follow: they are drawn again when the part of it that they use changes.
import { useEffect, useReducer, useRef } from 'preact/hooks';

export class Store<State extends object> {
  private readonly listeners = new Set<() => void>();

  constructor(public state: State) {}

  set(change: Partial<State>): void {
    this.state = { ...this.state, ...change };
    for (const listener of [...this.listeners]) listener();
  }

  subscribe(listener: () => void): () => void {
    this.listeners.add(listener);
    return () => this.listeners.delete(listener);
  }
}

export function useStore<State extends object, Part>(store: Store<State>, select: (state: State) => Part): Part {
  const [, redraw] = useReducer<number, void>((count) => count + 1, 0);
  const part = select(store.state);
  const drawn = useRef({ select, part });
  drawn.current = { select, part };
  useEffect(() => {
    const look = () => {
      if (!Object.is(drawn.current.select(store.state), drawn.current.part)) redraw();
    };
    look(); // it may have changed before the effect ran
    return store.subscribe(look);
  }, [store]);
  return part;
}
