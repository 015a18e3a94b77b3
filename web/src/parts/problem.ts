// What went wrong, in words that say what to do.
import { DoorError } from '../api/door.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';

export function wordsOf(error: unknown): string {
  if (!(error instanceof DoorError)) return error instanceof Error ? error.message : String(error);
  if (error.status === 0) return common.unreachable;
  if (error.status === 401) return common.loggedOut;
  if (error.status === 403) return fill(common.refused, { why: error.message });
  if (error.passing) return common.busy;
  const raised = error.problem?.description;
  return raised ? `${error.message}: ${raised}` : error.message;
}
