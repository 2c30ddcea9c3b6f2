import type {PageInfo} from '../data/Source';
import {shortText} from '../model/Values';

const most = 100;

/** Which document a view shows: the newest ones, and the one that is shown. */
export function DocumentChoice({
  documents,
  choices,
  index,
  view,
}: {
  documents: PageInfo['documents'];
  choices: number[];
  index: number;
  view: string;
}) {
  const listed = choices.filter((each, at) => at >= choices.length - most || each === index);
  return (
    <label class="choices">
      Document{' '}
      <select
        value={index}
        onChange={(event) => (location.hash = `#${view}/${event.currentTarget.value}`)}
      >
        {listed.map((each) => (
          <option value={each}>
            {shortText(documents[each].name)} ({documents[each].form})
          </option>
        ))}
      </select>
    </label>
  );
}
