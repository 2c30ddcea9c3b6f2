import {useState} from 'preact/hooks';
import {shortText} from '../model/Values';
import type {Column} from './Rows';

interface Props {
  all: readonly Column[];
  chosen: number[];
  choose: (columns: number[]) => void;
}

// More would be more elements than a page should have.
const mostListed = 60;

function fold(details: HTMLDetailsElement): void {
  details.open = false;
  details.querySelector('summary')!.focus();
}

/** Which columns are shown. */
export function ColumnChoice({all, chosen, choose}: Props) {
  const [open, setOpen] = useState(false);
  const toggle = (column: number, on: boolean): void =>
    choose(all.map((_, at) => at).filter((at) => (at === column ? on : chosen.includes(at))));
  return (
    <details
      class="columns"
      onToggle={(event) => setOpen(event.currentTarget.open)}
      onKeyDown={(event) => event.key === 'Escape' && fold(event.currentTarget)}
    >
      <summary>
        Columns ({chosen.length} of {all.length})
      </summary>
      {open && (
        <div class="choice">
          <button type="button" onClick={() => choose(all.map((_, at) => at))}>
            All
          </button>
          {all.slice(0, mostListed).map(({key, description}, at) => (
            <label title={description}>
              <input
                type="checkbox"
                checked={chosen.includes(at)}
                disabled={chosen.length === 1 && chosen[0] === at}
                onChange={(event) => toggle(at, event.currentTarget.checked)}
              />
              {shortText(key)}
            </label>
          ))}
        </div>
      )}
    </details>
  );
}
