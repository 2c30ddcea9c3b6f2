import {scaleLinear} from 'd3-scale';
import {useMemo} from 'preact/hooks';
import type {Change, PageInfo} from '../data/Source';
import {countText, dayText, shortText} from '../model/Values';
import {ChangeRows} from '../table/ChangeRows';
import {DataTable} from '../table/DataTable';
import {useKept} from '../table/useKept';

const mostDays = 31;
const barWidth = 120;

/** The story of the documents: what came, went and changed. */
export function ChangesView({page}: {page: PageInfo}) {
  const changes = page.changes ?? [];
  const rows = useMemo(() => new ChangeRows(changes, page), [page]);
  const days = useMemo(() => countBy(changes, dayOf), [page]);
  const sections = useMemo(() => countBy(changes, ({section}) => section), [page]);
  const kinds = useMemo(() => countBy(changes, ({change}) => change), [page]);
  const [day, setDay] = useKept('changes day', () => '');
  const [section, setSection] = useKept('changes section', () => '');
  const [kind, setKind] = useKept('changes kind', () => '');
  const filter =
    day || section || kind
      ? {
          name: JSON.stringify([day, section, kind]),
          test: (row: number) => {
            const change = rows.change(row);
            return (
              (!day || dayOf(change) === day) &&
              (!section || change.section === section) &&
              (!kind || change.change === kind)
            );
          },
        }
      : undefined;
  if (changes.length === 0) return <p>{nothingText(page)}</p>;
  return (
    <>
      <Days days={days} day={day} choose={setDay} />
      <div class="choices" role="group" aria-label="Which changes">
        <Choice name="Section" value={section} counts={sections} choose={setSection} />
        <Choice name="Change" value={kind} counts={kinds} choose={setKind} />
      </div>
      <DataTable name="changes" label="Changes" rows={rows} filter={filter} />
    </>
  );
}

const nothingText = ({documents}: PageInfo): string =>
  documents.length > 1
    ? 'Nothing differs between the documents.'
    : 'There is only one document, so no changes are known.';

const dayOf = ({time, day}: Change): string =>
  time === null ? (day ?? 'unknown') : dayText(time * 1000);

function countBy(
  changes: readonly Change[],
  keyOf: (change: Change) => string,
): Map<string, number> {
  const counts = new Map<string, number>();
  for (const change of changes) counts.set(keyOf(change), (counts.get(keyOf(change)) ?? 0) + 1);
  return counts;
}

function Days({
  days,
  day,
  choose,
}: {
  days: Map<string, number>;
  day: string;
  choose: (day: string) => void;
}) {
  const width = scaleLinear([0, Math.max(...days.values())], [2, barWidth]);
  const newest = [...days].slice(-mostDays);
  return (
    <ul class="days" aria-label="Days">
      {newest.map(([name, count]) => (
        <li>
          <button
            type="button"
            aria-pressed={day === name}
            onClick={() => choose(day === name ? '' : name)}
          >
            {shortText(name)}
            <span class="bar" style={{width: `${width(count)}px`}} />
            {countText(count, 'change')}
          </button>
        </li>
      ))}
    </ul>
  );
}

function Choice({
  name,
  value,
  counts,
  choose,
}: {
  name: string;
  value: string;
  counts: Map<string, number>;
  choose: (value: string) => void;
}) {
  return (
    <label>
      {name}{' '}
      <select value={value} onChange={(event) => choose(event.currentTarget.value)}>
        <option value="">all</option>
        {[...counts].slice(0, 100).map(([key, count]) => (
          <option value={key}>
            {shortText(key)} ({count})
          </option>
        ))}
      </select>
    </label>
  );
}
