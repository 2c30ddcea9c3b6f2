import type {FieldSchema, SectionSchema} from '../data/Source';
import {isDate} from '../model/Values';
import type {Column} from './Rows';

/** A column of a property, as wide as its values as a rule are. */
export const columnOf = (key: string, field: FieldSchema | undefined, common = true): Column => ({
  key,
  description: field?.description,
  source: field?.source,
  unit: field?.unit,
  width: Math.max(widthOf(field), 40 + key.length * 9),
  common,
});

function widthOf(field: FieldSchema | undefined): number {
  if (isDate(field?.unit)) return 210;
  const type = [field?.type ?? 'string'].flat()[0];
  return type === 'integer' || type === 'number' || type === 'boolean' ? 110 : 240;
}

/** The fields of a section below a property, without those of lists within it. */
export function fieldsBelow(
  schema: SectionSchema | undefined,
  prefix: string,
): Record<string, FieldSchema> {
  const fields: Record<string, FieldSchema> = {};
  for (const [path, field] of Object.entries(schema?.fields ?? {})) {
    if (path.startsWith(prefix) && !path.slice(prefix.length).includes('.')) {
      fields[path.slice(prefix.length)] = field;
    }
  }
  return fields;
}
