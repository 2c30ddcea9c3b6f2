import {countText, shortText} from '../model/Values';
import {cellText} from './cells';
import type {RowOrder} from './RowOrder';
import type {Rows} from './Rows';

const mostCells = 1000;

/** As many rows as a page may have elements for. */
export function PrintedTable({
  label,
  rows,
  order,
  columns,
}: {
  label: string;
  rows: Rows;
  order: RowOrder;
  columns: number[];
}) {
  const count = Math.min(order.count, Math.floor(mostCells / (columns.length + 1)));
  return (
    <table class="printed">
      <caption>
        {label}
        {count < order.count && `: the first ${count} of ${countText(order.count, 'row')}`}
      </caption>
      <thead>
        <tr>
          {columns.map((column) => (
            <th>{shortText(rows.columns[column].key)}</th>
          ))}
        </tr>
      </thead>
      <tbody>
        {Array.from({length: count}, (_, place) => (
          <tr>
            {columns.map((column) => (
              <td>{cellText(rows, order.row(place), column).text}</td>
            ))}
          </tr>
        ))}
      </tbody>
    </table>
  );
}
